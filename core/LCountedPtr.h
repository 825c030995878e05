// The counted pointer over objects with AddRef/Release (sources, sinks, documents).
#pragma once

#include <utility>

template <class T> class LCountedPtr
{
public:
    LCountedPtr() = default;
    LCountedPtr(T* p) : pObj(p) { if (pObj) pObj->AddRef(); }
    LCountedPtr(const LCountedPtr& o) : LCountedPtr(o.pObj) {}
    template <class U> LCountedPtr(const LCountedPtr<U>& o) : LCountedPtr(o.Get()) {}
    LCountedPtr(LCountedPtr&& o) noexcept : pObj(o.pObj) { o.pObj = nullptr; }
    ~LCountedPtr() { if (pObj) pObj->Release(); }

    // The new object is taken before the old one is released, so self-assignment is safe.
    LCountedPtr& operator=(T* p)
    {
        if (p) p->AddRef();
        T* pOld = pObj;
        pObj = p;
        if (pOld) pOld->Release();
        return *this;
    }
    LCountedPtr& operator=(const LCountedPtr& o) { return *this = o.pObj; }
    LCountedPtr& operator=(LCountedPtr&& o) noexcept
    {
        std::swap(pObj, o.pObj);
        return *this;
    }

    T* Get() const { return pObj; }
    T* operator->() const { return pObj; }
    T& operator*() const { return *pObj; }
    explicit operator bool() const { return pObj != nullptr; }
    void Reset() { *this = nullptr; }

private:
    T* pObj = nullptr;
};
