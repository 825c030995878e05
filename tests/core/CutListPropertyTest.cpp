// Random edits on documents made of several segments, each checked against a plain array of
// samples that undergoes the same operations.
#include "DocumentTestSupport.h"

#include <algorithm>
#include <deque>
#include <random>

#include "core/LEdFile.h"

using namespace doctest;

namespace {

// The document as plain frames: the stored samples and, per frame, the gain of its cut.
struct Model
{
    int nChans = 1;
    std::vector<int32_t> vSamples;
    std::vector<int32_t> vGains;

    int64_t Len() const { return static_cast<int64_t>(vGains.size()); }
    void Erase(int64_t s, int64_t e)
    {
        vSamples.erase(vSamples.begin() + s * nChans, vSamples.begin() + e * nChans);
        vGains.erase(vGains.begin() + s, vGains.begin() + e);
    }
    void Splice(int64_t p, const Model& o)
    {
        vSamples.insert(vSamples.begin() + p * nChans, o.vSamples.begin(), o.vSamples.end());
        vGains.insert(vGains.begin() + p, o.vGains.begin(), o.vGains.end());
    }
    static Model Zeros(int nChans, int64_t n)
    {
        Model m;
        m.nChans = nChans;
        m.vSamples.assign(n * nChans, 0);
        m.vGains.assign(n, kGainUnity);
        return m;
    }

    bool Copy(int64_t a, int64_t b, Model& dest) const
    {
        if (a > b)
            return false;
        dest = Zeros(nChans, b - a);
        for (int64_t i = std::max<int64_t>(a, 0); i < std::min(b, Len()); ++i) {
            std::copy_n(vSamples.begin() + i * nChans, nChans, dest.vSamples.begin() + (i - a) * nChans);
            dest.vGains[i - a] = vGains[i];
        }
        return true;
    }
    void Delete(int64_t a, int64_t b)
    {
        if (b < a || b < 0)
            return;
        const int64_t s = std::max<int64_t>(a, 0), e = std::min(b, Len());
        if (s < e)
            Erase(s, e);
    }
    void InsertSilence(int64_t p, int64_t n)
    {
        if (n < 0 || (p < 0 && n < -p))
            return;
        if (p < 0) {
            n += p;
            p = 0;
        }
        if (p > Len()) {
            n += p - Len();
            p = Len();
        }
        Splice(p, Zeros(nChans, n));
    }
    void Insert(int64_t p, const Model& o)
    {
        Model ins = o;
        ins.nChans = nChans;
        if (p < 0) {
            ins.Splice(ins.Len(), Zeros(nChans, -p));
            p = 0;
        } else if (p > Len()) {
            Splice(Len(), Zeros(nChans, p - Len()));
        }
        Splice(p, ins);
    }
    void AmplifyAll(int32_t nPercent)
    {
        if (nPercent == 100 || nPercent < 0)
            return;
        const int32_t nCeiling = nPercent > 100 ? (INT32_MAX / nPercent) * 100 : INT32_MAX;
        for (int32_t& g : vGains)
            g = nCeiling > g ? (g / 100) * nPercent : INT32_MAX;
    }
    void Cut(int64_t a, int64_t b, Model& dest)
    {
        Copy(a, b, dest);
        Delete(a, b);
    }
    void Amplify(int64_t a, int64_t b, int32_t nPercent)
    {
        if (b < a || nPercent == 100)
            return;
        Model scratch;
        Cut(a, b, scratch);
        scratch.AmplifyAll(nPercent);
        Insert(a, scratch);
    }
    void Repeat(int64_t a, int64_t b, int nTimes)
    {
        Model scratch;
        Copy(a, b, scratch);
        for (int i = 0; i < nTimes; ++i)
            Insert(a, scratch);
    }
    std::vector<int32_t> Output() const
    {
        std::vector<int32_t> v(vSamples.size());
        for (size_t i = 0; i < v.size(); ++i) {
            const int32_t g = vGains[i / nChans];
            v[i] = g == kGainUnity ? vSamples[i] : LMulGain824(vSamples[i], g);
        }
        return v;
    }
};

class Runner
{
public:
    Runner(int nChans, uint32_t nSeed) : nChans(nChans), rng(nSeed)
    {
        model.nChans = nChans;
        modelClip.nChans = nChans;
        file.GetDocument().SetFormat(44100, static_cast<uint8_t>(nChans));
        for (int nSegment = 0; nSegment < 3; ++nSegment) {
            std::vector<int32_t> v(Rand(1, 700) * nChans);
            for (int32_t& s : v)
                s = static_cast<int32_t>(rng());
            LCutListAudioPtr pSeg = MakeDoc(v, static_cast<uint8_t>(nChans));
            Model m;
            m.nChans = nChans;
            m.vSamples = v;
            m.vGains.assign(v.size() / nChans, kGainUnity);
            const int64_t p = Rand(0, model.Len());
            file.GetDocument().Insert(static_cast<int32_t>(p), *pSeg);
            model.Insert(p, m);
        }
    }

    // Takes and later gives back more references on each segment than a count can hold.
    void ShareSegmentsBeyondTheirCounts(bool bTake)
    {
        std::vector<uint16_t> vRefs;
        file.GetDocument().GetCuts().ForEach([&](const LAudioCut& c) {
            if (!c.IsSilent() && std::find(vRefs.begin(), vRefs.end(), c.nRef) == vRefs.end())
                vRefs.push_back(c.nRef);
        });
        if (bTake)
            vTaken = vRefs;
        for (uint16_t nRef : vTaken)
            for (int i = 0; i < 66000; ++i)
                bTake ? LAudioCutTank::Instance().IncRef(nRef) : LAudioCutTank::Instance().DecRef(nRef);
    }

    void Step(std::string& szWhat)
    {
        LCutListAudio& doc = file.GetDocument();
        const int64_t a = Pos(), b = Pos();
        const int nOp = Rand(0, 17);
        szWhat = "op " + std::to_string(nOp) + " " + std::to_string(a) + "," + std::to_string(b);
        if (model.Len() > 2000) { // keep the documents small: trim back
            Modify("Trim End");
            doc.CropEnd(static_cast<int32_t>(a % 1000));
            model.Delete(a % 1000, model.Len());
            return;
        }
        switch (nOp) {
        case 0: Modify("Delete"); doc.EfDelete(I(a), I(b)); model.Delete(a, b); break;
        case 1: Modify("Trim"); doc.CropEnd(I(b)); doc.CropStart(I(a));
                model.Delete(b, model.Len()); if (a > 0) model.Delete(0, a); break;
        case 2: Modify("Trim Start"); doc.CropStart(I(a)); if (a > 0) model.Delete(0, a); break;
        case 3: doc.EfCopy(I(a), I(b), clip); model.Copy(a, b, modelClip); break;
        case 4: Modify("Cut"); doc.Cut(I(a), I(b), clip); if (model.Copy(a, b, modelClip)) model.Delete(a, b); break;
        case 5: Modify("Paste"); doc.Insert(I(a), clip); model.Insert(a, modelClip); break;
        case 6: { const int64_t n = Rand(-5, 80); Modify("Insert Silence"); doc.InsertSilence(I(a), I(n));
                  model.InsertSilence(a, n); break; }
        case 7: { const int n = Rand(0, 3); Modify("Repeat Loop"); doc.Repeat(I(a), I(std::min(b, a + 200)), n);
                  model.Repeat(a, std::min(b, a + 200), n); break; }
        case 8: { const int32_t p = Percent(); Modify("Amplify"); doc.EfAmplify(I(a), I(b), p); model.Amplify(a, b, p); break; }
        case 9: { const int32_t p = Percent(); Modify("Amplify"); doc.EfAmplifyAll(p); model.AmplifyAll(p); break; }
        case 10: Modify("Paste"); doc.Replace(I(a), I(b), clip); model.Delete(a, b); model.Insert(a, modelClip); break;
        case 11: case 12: Modify("Paste"); doc.Insert(I(b), clip); model.Insert(b, modelClip); break;
        case 16: case 17: Redo(); break;
        default: Undo(); break;
        }
    }

    void Check(const std::string& szWhat)
    {
        const LCutListAudio& doc = file.GetDocument();
        ASSERT_EQ(doc.GetLength(), model.Len()) << szWhat;
        ASSERT_EQ(ReadDoc(doc), model.Output()) << szWhat;
        ASSERT_EQ(file.GetUndoLevels(), static_cast<int>(undo.size())) << szWhat;
        ASSERT_EQ(file.GetRedoLevels(), static_cast<int>(redo.size())) << szWhat;
    }

    // Reads in random pieces from a random start, as a player that seeks does.
    void CheckSeekingRead(const std::string& szWhat)
    {
        const std::vector<int32_t> vAll = model.Output();
        LSoundSourcePtr pSrc = file.GetDocument().OpenSource();
        int64_t p = Pos();
        pSrc->SetPosition(I(p));
        for (int nPiece = 0; nPiece < 4; ++nPiece) {
            const int n = Rand(0, 300);
            std::vector<int32_t> v(static_cast<size_t>(n) * nChans);
            pSrc->Read(v.data(), n);
            for (int i = 0; i < n * nChans; ++i) {
                const int64_t f = p + i / nChans;
                const int32_t want = f >= 0 && f < model.Len() ? vAll[f * nChans + i % nChans] : 0;
                ASSERT_EQ(v[i], want) << szWhat << " seek " << p << " sample " << i;
            }
            p += n;
            ASSERT_EQ(pSrc->GetPosition(), p);
        }
    }

    void CheckRangeSource(const std::string& szWhat)
    {
        const int64_t a = Pos(), b = a + Rand(0, 200);
        Model range;
        model.Copy(a, b, range);
        LSoundSourcePtr pSrc = file.GetDocument().OpenSource(I(a), I(b));
        ASSERT_EQ(pSrc->GetLength(), b - a) << szWhat;
        std::vector<int32_t> v(static_cast<size_t>(b - a) * nChans);
        pSrc->Read(v.data(), I(b - a));
        ASSERT_EQ(v, range.Output()) << szWhat << " range " << a << "," << b;
    }

    int Rand(int nLo, int64_t nHi) { return static_cast<int>(std::uniform_int_distribution<int64_t>(nLo, nHi)(rng)); }

private:
    static int32_t I(int64_t v) { return static_cast<int32_t>(v); }
    int64_t Pos() { return Rand(-60, model.Len() + 60) ; }
    int32_t Percent()
    {
        static const int32_t vPercents[] = {0, 1, 50, 99, 100, 101, 150, 200, 400, 1000, 12345, 2000000000};
        return vPercents[Rand(0, std::size(vPercents) - 1)];
    }
    void Modify(const char* szLabel)
    {
        file.StartModify(szLabel);
        undo.push_back(model);
        if (undo.size() > LEdFile::kUndoLevels)
            undo.pop_front();
        redo.clear();
    }
    void Undo()
    {
        EXPECT_EQ(file.Undo(), !undo.empty());
        if (!undo.empty()) {
            redo.push_back(model);
            model = undo.back();
            undo.pop_back();
        }
    }
    void Redo()
    {
        EXPECT_EQ(file.Redo(), !redo.empty());
        if (!redo.empty()) {
            undo.push_back(model);
            model = redo.back();
            redo.pop_back();
        }
    }

    int nChans;
    std::mt19937 rng;
    LEdFile file;
    LCutListAudio clip;
    Model model;
    Model modelClip;
    std::deque<Model> undo;
    std::deque<Model> redo;
    std::vector<uint16_t> vTaken;
};

} // namespace

class CutListProperty : public DocumentTest
{
};

TEST_F(CutListProperty, RandomEditsUndoAndRedoReadLikeThePlainArrayModel)
{
    int nSteps = 0;
    for (int nChans : {1, 2}) {
        for (uint32_t nSeed = 1; nSeed <= 6; ++nSeed) {
            Runner run(nChans, nSeed * 7919 + nChans);
            for (int i = 0; i < 400; ++i, ++nSteps) {
                std::string szWhat;
                run.Step(szWhat);
                szWhat = "seed " + std::to_string(nSeed) + " ch " + std::to_string(nChans) + " step " +
                         std::to_string(i) + " " + szWhat;
                ASSERT_NO_FATAL_FAILURE(run.Check(szWhat));
                if (i % 8 == 0) {
                    ASSERT_NO_FATAL_FAILURE(run.CheckSeekingRead(szWhat));
                }
                if (i % 8 == 4) {
                    ASSERT_NO_FATAL_FAILURE(run.CheckRangeSource(szWhat));
                }
            }
        }
    }
    EXPECT_GE(nSteps, 4000);
    // The fixture then checks that every count is back to 0 and no segment file is left.
}

// Segments shared more than 65535 times, their extra references then dropped in the middle of
// the run: the edits keep reading their samples.
TEST_F(CutListProperty, SegmentsPastTheCountLimitKeepTheirSamples)
{
    for (int nChans : {1, 2}) {
        {
            Runner run(nChans, 104729 + nChans);
            run.ShareSegmentsBeyondTheirCounts(true);
            for (int i = 0; i < 300; ++i) {
                if (i == 100)
                    run.ShareSegmentsBeyondTheirCounts(false);
                std::string szWhat;
                run.Step(szWhat);
                szWhat = "ch " + std::to_string(nChans) + " step " + std::to_string(i) + " " + szWhat;
                ASSERT_NO_FATAL_FAILURE(run.Check(szWhat));
            }
        }
        // Pinned segments stay claimed until the tank sweeps its folder.
        LAudioCutTank::Instance().Sweep();
    }
}
