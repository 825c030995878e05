// The order in which a device plays and hands back queued buffers, loops included.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "devices/LWaveQueue.h"

namespace {

// Buffers whose bytes are their own letter, so that what was played reads as a string.
struct Buffers
{
    explicit Buffers(const std::string& szLetters) : vData(szLetters.size()), vHeaders(szLetters.size())
    {
        for (size_t i = 0; i < szLetters.size(); ++i) {
            vData[i].assign(4, static_cast<uint8_t>(szLetters[i]));
            vHeaders[i].pData = vData[i].data();
            vHeaders[i].nBufferLength = 4;
        }
    }
    LWaveHeader& operator[](size_t i) { return vHeaders[i]; }
    std::string Done()
    {
        std::string s;
        for (LWaveHeader& h : vHeaders)
            s += h.IsDone() ? 'd' : '.';
        return s;
    }

    std::vector<std::vector<uint8_t>> vData;
    std::vector<LWaveHeader> vHeaders;
};

// One letter per buffer played through.
std::string Play(LWaveQueue& queue, uint32_t nBytes)
{
    std::vector<uint8_t> v(nBytes);
    v.resize(queue.Take(v.data(), nBytes));
    std::string s;
    for (size_t i = 0; i < v.size(); i += 4)
        s += static_cast<char>(v[i]);
    return s;
}

void QueueLoop(LWaveQueue& queue, Buffers& b, size_t nFirst, size_t nLast, uint32_t nLoops)
{
    b[nFirst].SetFlags(kWaveHdrBeginLoop);
    b[nFirst].dwLoops = nLoops;
    b[nLast].SetFlags(kWaveHdrEndLoop);
    for (size_t i = nFirst; i <= nLast; ++i)
        queue.Add(b[i]);
}

} // namespace

TEST(WaveQueueLoop, PlaysEveryPassAndHandsTheLoopBackTogether)
{
    LWaveQueue queue(nullptr);
    Buffers b("xABCy");
    queue.Add(b[0]);
    QueueLoop(queue, b, 1, 3, 3);
    queue.Add(b[4]);
    EXPECT_EQ(Play(queue, 4 * 5), "xABCA");
    EXPECT_EQ(b.Done(), "d....");
    EXPECT_EQ(Play(queue, 4 * 100), "BCABCy");
    EXPECT_EQ(b.Done(), "ddddd");
    EXPECT_TRUE(queue.IsEmpty());
}

TEST(WaveQueueLoop, SingleBufferLoopAndBreakFinishingThePass)
{
    LWaveQueue queue(nullptr);
    Buffers b("Lz");
    QueueLoop(queue, b, 0, 0, 1000);
    queue.Add(b[1]);
    EXPECT_EQ(Play(queue, 4 * 3), "LLL");
    queue.BreakLoop();
    // Half a pass now, the other half after: the loop then lets go.
    EXPECT_EQ(Play(queue, 2), "L");
    EXPECT_EQ(b.Done(), "..");
    std::vector<uint8_t> vRest(6);
    EXPECT_EQ(queue.Take(vRest.data(), 6), 6u);
    EXPECT_EQ(std::string(vRest.begin(), vRest.end()), "LLzzzz");
    EXPECT_EQ(b.Done(), "dd");
}

TEST(WaveQueueLoop, WaitsForTheRestOfALoopStillBeingQueued)
{
    LWaveQueue queue(nullptr);
    Buffers b("PQR");
    b[0].SetFlags(kWaveHdrBeginLoop);
    b[0].dwLoops = 2;
    queue.Add(b[0]);
    queue.Add(b[1]);
    EXPECT_EQ(Play(queue, 4 * 10), "PQ");
    EXPECT_EQ(queue.BytesToNextReturn(), 0u);
    b[2].SetFlags(kWaveHdrEndLoop);
    queue.Add(b[2]);
    EXPECT_EQ(Play(queue, 4 * 10), "RPQR");
    EXPECT_EQ(b.Done(), "ddd");
}

TEST(WaveQueueLoop, EmptyLoopEndsAndResetReturnsALoopMidway)
{
    LWaveQueue queue(nullptr);
    Buffers b("E");
    b[0].nBufferLength = 0;
    QueueLoop(queue, b, 0, 0, 50);
    EXPECT_EQ(Play(queue, 4), "");
    EXPECT_EQ(b.Done(), "d");

    Buffers c("ST");
    QueueLoop(queue, c, 0, 1, 4);
    EXPECT_EQ(Play(queue, 4 * 3), "STS");
    queue.Reset();
    EXPECT_EQ(c.Done(), "dd");
    EXPECT_TRUE(queue.IsEmpty());
    EXPECT_EQ(Play(queue, 4), "");
}
