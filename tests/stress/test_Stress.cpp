// Load runs: processes racing on one container, the thread pool under many tasks that sometimes
// throw, and many spawned children with redirected streams.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "thr/thr_ThreadPool.h"
#include "uti/uti_Spawn.h"
#include "utl/utl_MultisectionFile.h"
#include "zul_TestSupport.h"

namespace {

int StressSeconds()
{
    const char* s = std::getenv("ZUL_STRESS_SECONDS");
    const int n = s ? std::atoi(s) : 0;
    return n > 0 ? n : 3;
}

// The full sizes (a million tasks, a thousand children) in the long run; a tenth in the short
// run of the ordinary test suite and under Wine.
bool FullSize()
{
#ifdef _WIN32
    return false;
#else
    return StressSeconds() >= 60;
#endif
}

TEST(Stress, EightProcessesRacingOnOneContainerLoseNoUpdate)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("race.msf");
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        f.setSectionData("counter", "0", 1);
        f.setSectionData("payload", std::string(256 * 1024, 'p').data(), 256 * 1024);
        f.saveChanges();
    }
    const int kWriters = 8;
    std::vector<uti_Spawn> writers(kWriters);
    std::vector<std::string> outputs;
    const std::string ms = std::to_string(StressSeconds() * 1000);
    for (int i = 0; i < kWriters; ++i) {
        outputs.push_back(dir.File("writer" + std::to_string(i) + ".out"));
        uti_Redirection redirection(-1, zul_test::OpenForWriting(outputs.back()), -1);
        writers[i].Start(zul_test::ChildPath().c_str(), zul_test::Arguments({"msf-count", path, ms}), redirection);
    }
    long updates = 0, refusals = 0, others = 0;
    for (int i = 0; i < kWriters; ++i) {
        EXPECT_EQ(writers[i].Reap(0), 0);
        std::istringstream said(zul_test::ReadFileBytes(outputs[i]));
        long u = -1, r = -1, o = -1;
        said >> u >> r >> o;
        ASSERT_GE(u, 0) << "writer " << i << " reported nothing";
        updates += u;
        refusals += r;
        others += o;
    }
    RecordProperty("updates", static_cast<int>(updates));
    RecordProperty("refusals", static_cast<int>(refusals));
    EXPECT_EQ(others, 0) << "every failure must be the lock message";
    EXPECT_GT(updates, 0);

    utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
    std::string counter(static_cast<size_t>(f.getSectionLength("counter")), '\0');
    f.getSectionData("counter", &counter[0]);
    EXPECT_EQ(std::atol(counter.c_str()), updates) << "an update was lost";
    std::string payload(256 * 1024, '\0');
    f.getSectionData("payload", &payload[0]);  // every section still checks
    EXPECT_EQ(payload, std::string(256 * 1024, 'p'));
}

class MaybeThrowingTask : public thr_ThreadTask {
public:
    MaybeThrowingTask(bool fail, std::atomic<long>& ran, std::atomic<long>& deleted) : m_fail(fail), m_ran(ran), m_deleted(deleted) {}
    ~MaybeThrowingTask() override { m_deleted.fetch_add(1, std::memory_order_relaxed); }
    void Run(int) override
    {
        m_ran.fetch_add(1, std::memory_order_relaxed);
        if (m_fail)
            throw nex_TextException("stress task failed on purpose");
    }

private:
    bool m_fail;
    std::atomic<long>& m_ran;
    std::atomic<long>& m_deleted;
};

TEST(Stress, APoolRunsManyTasksOfWhichSomeThrow)
{
    thr_GlobalSingletonBase<thr_ThreadPool>::Finalize();
    thr_ThreadPool& pool = thr_ThreadPool::Instance();
    ASSERT_EQ(pool.AddThreads(2), 2);
    const long kTasks = FullSize() ? 1000000 : 100000;
    std::atomic<long> ran{0}, deleted{0};
    std::mt19937 random(42);
    long throwing = 0;
    for (long i = 0; i < kTasks; ++i) {
        const bool fail = random() % 20000 == 0;  // a few, so that their reports stay readable
        throwing += fail;
        ASSERT_TRUE(pool.RunTask(new MaybeThrowingTask(fail, ran, deleted)));
    }
    for (int i = 0; i < 600000 && deleted.load() < kTasks; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(ran.load(), kTasks);
    EXPECT_EQ(deleted.load(), kTasks);
    EXPECT_EQ(pool.ErrorCondition(), throwing > 0);
    RecordProperty("throwing", static_cast<int>(throwing));
    pool.SetErrorCondition(false);
    // The pool still runs tasks afterwards.
    ASSERT_TRUE(pool.RunTask(new MaybeThrowingTask(false, ran, deleted)));
    for (int i = 0; i < 10000 && deleted.load() < kTasks + 1; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(ran.load(), kTasks + 1);
    EXPECT_FALSE(pool.ErrorCondition());
    thr_GlobalSingletonBase<thr_ThreadPool>::Finalize();
}

TEST(Stress, ManyRedirectedChildrenLeakNoDescriptor)
{
    zul_test::TempDir dir;
    const std::string input = dir.File("in.txt");
    zul_test::WriteFileBytes(input, "through the child\n");
    const int before = zul_test::OpenDescriptorCount();
    const int kChildren = FullSize() ? 1000 : 100;
    for (int i = 0; i < kChildren; ++i) {
        const std::string output = dir.File("out.txt");
        uti_Redirection redirection(zul_test::OpenForReading(input), zul_test::OpenForWriting(output), 1);
        uti_Spawn child;
        child.Start(zul_test::ChildPath().c_str(), zul_test::Arguments({"cat"}), redirection);
        ASSERT_EQ(child.Reap(0), 0) << "child " << i;
        ASSERT_EQ(zul_test::ReadFileBytes(output), "through the child\n") << "child " << i;
    }
    EXPECT_EQ(zul_test::OpenDescriptorCount(), before);
}

}  // namespace
