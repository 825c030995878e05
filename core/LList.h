// The program's own doubly linked list with a cursor-style iterator. Elements are held by
// value, so copying a list copies every element (a cut record takes a segment reference then).
#pragma once

#include <cstddef>
#include <utility>

#include "core/LTrace.h"

template <class T> class LListIterator;

template <class T> class LList
{
    friend class LListIterator<T>;

    struct Node
    {
        T data;
        Node* pPrev = nullptr;
        Node* pNext = nullptr;
        template <class U> explicit Node(U&& v) : data(std::forward<U>(v)) {}
    };

public:
    LList() = default;
    LList(const LList& other) { CopyFrom(other); }
    LList(LList&& other) noexcept { Swap(other); }
    LList& operator=(const LList& other)
    {
        if (this != &other) {
            LList tmp(other);
            Swap(tmp);
        }
        return *this;
    }
    LList& operator=(LList&& other) noexcept
    {
        if (this != &other) {
            Clear();
            Swap(other);
        }
        return *this;
    }
    ~LList() { Clear(); }

    size_t Count() const { return nCount; }
    bool IsEmpty() const { return nCount == 0; }

    void Append(const T& v) { LinkBefore(nullptr, new Node(v)); }
    void Append(T&& v) { LinkBefore(nullptr, new Node(std::move(v))); }
    void Prepend(const T& v) { LinkBefore(pHead, new Node(v)); }

    // Inserts after the iterator's element; an invalid iterator is misuse and inserts nothing.
    bool AddAfter(const LListIterator<T>& it, const T& v);
    // Inserts before the iterator's element; an invalid (finished) iterator appends.
    void AddBefore(const LListIterator<T>& it, const T& v)
    {
        LinkBefore(it.IsValid() && it.pList == this ? it.pNode : nullptr, new Node(v));
    }
    // Unlinks and destroys the iterator's element; the iterator moves on to the next one.
    bool Detach(LListIterator<T>& it);
    // Removes the first element equal to v.
    bool Delete(const T& v);

    void Clear()
    {
        Node* p = pHead;
        while (p) {
            Node* pNext = p->pNext;
            delete p;
            p = pNext;
        }
        pHead = pTail = nullptr;
        nCount = 0;
    }

    void Swap(LList& other) noexcept
    {
        std::swap(pHead, other.pHead);
        std::swap(pTail, other.pTail);
        std::swap(nCount, other.nCount);
    }

    T* First() { return pHead ? &pHead->data : nullptr; }
    T* Last() { return pTail ? &pTail->data : nullptr; }
    const T* First() const { return pHead ? &pHead->data : nullptr; }
    const T* Last() const { return pTail ? &pTail->data : nullptr; }

    template <class F> void ForEach(F&& f) const
    {
        for (Node* p = pHead; p; p = p->pNext)
            f(p->data);
    }
    template <class F> void ForEach(F&& f)
    {
        for (Node* p = pHead; p; p = p->pNext)
            f(p->data);
    }

private:
    void CopyFrom(const LList& other)
    {
        for (Node* p = other.pHead; p; p = p->pNext)
            Append(p->data);
    }

    void LinkBefore(Node* pAt, Node* pNew)
    {
        if (!pAt) {
            pNew->pPrev = pTail;
            if (pTail)
                pTail->pNext = pNew;
            else
                pHead = pNew;
            pTail = pNew;
        } else {
            pNew->pNext = pAt;
            pNew->pPrev = pAt->pPrev;
            if (pAt->pPrev)
                pAt->pPrev->pNext = pNew;
            else
                pHead = pNew;
            pAt->pPrev = pNew;
        }
        ++nCount;
    }

    void Unlink(Node* p)
    {
        if (p->pPrev)
            p->pPrev->pNext = p->pNext;
        else
            pHead = p->pNext;
        if (p->pNext)
            p->pNext->pPrev = p->pPrev;
        else
            pTail = p->pPrev;
        --nCount;
    }

    Node* pHead = nullptr;
    Node* pTail = nullptr;
    size_t nCount = 0;
};

template <class T> class LListIterator
{
    friend class LList<T>;

public:
    LListIterator() = default;
    explicit LListIterator(LList<T>& list) : pList(&list), pNode(list.pHead) {}

    bool IsValid() const { return pNode != nullptr; }
    T& operator*() const { return pNode->data; }
    T* operator->() const { return &pNode->data; }
    T* Get() const { return pNode ? &pNode->data : nullptr; }

    void First() { pNode = pList ? pList->pHead : nullptr; }
    void Next()
    {
        if (!pNode) {
            LTRACE("LListIterator<T>::Next() called when iterator is not valid");
            return;
        }
        pNode = pNode->pNext;
    }
    // The element after the current one, or null.
    T* PeekNext() const { return pNode && pNode->pNext ? &pNode->pNext->data : nullptr; }

private:
    LList<T>* pList = nullptr;
    typename LList<T>::Node* pNode = nullptr;
};

template <class T> bool LList<T>::AddAfter(const LListIterator<T>& it, const T& v)
{
    if (!it.IsValid() || it.pList != this) {
        LTRACE("LList<T>::AddAfter called with an invalid iterator");
        return false;
    }
    LinkBefore(it.pNode->pNext, new Node(v));
    return true;
}

template <class T> bool LList<T>::Detach(LListIterator<T>& it)
{
    if (!it.IsValid() || it.pList != this) {
        LTRACE("LList<T>::Detach called with an invalid iterator");
        return false;
    }
    Node* p = it.pNode;
    it.pNode = p->pNext;
    Unlink(p);
    delete p;
    return true;
}

template <class T> bool LList<T>::Delete(const T& v)
{
    for (Node* p = pHead; p; p = p->pNext) {
        if (p->data == v) {
            Unlink(p);
            delete p;
            return true;
        }
    }
    LTRACE("LList<T>::Delete called but item not found in the list");
    return false;
}
