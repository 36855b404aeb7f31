// Child processes, run for real: the helper program zul_child echoes its arguments, environment
// and input, writes to its error stream, sleeps and exits with given statuses.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "typ/typ_DebugFlags.h"
#include "uti/uti_Spawn.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::Arguments;
using zul_test::ChildPath;

// Reaches the protected lookup.
struct Finder : uti_Spawn {
    using uti_Spawn::FindCommand;
};

struct Outcome {
    int status;
    std::string out;
};

// Runs the child with the arguments; its output (and, when asked, its errors) go to a file.
Outcome RunChild(const std::vector<std::string>& args, const uti_Spawn::Environment& env = uti_Spawn::Environment(),
                 const std::string& input = std::string(), bool errorsFollowOutput = false)
{
    zul_test::TempDir dir;
    uti_Redirection redirection;
    if (!input.empty()) {
        zul_test::WriteFileBytes(dir.File("in"), input);
        redirection.SetDescriptor(uti_Redirection::Input, zul_test::OpenForReading(dir.File("in")));
    }
    redirection.SetDescriptor(uti_Redirection::Output, zul_test::OpenForWriting(dir.File("out")));
    if (errorsFollowOutput)
        redirection.SetDescriptor(uti_Redirection::Error, 1);
    uti_Spawn child;
    child.Start(ChildPath().c_str(), Arguments(args), redirection, env);
    for (int i = 0; i < uti_Redirection::Count; ++i)
        EXPECT_EQ(redirection.Descriptor(i), -1);
    const int status = child.Reap(0);
    return Outcome{status, zul_test::ReadFileBytes(dir.File("out"))};
}

TEST(UtiSpawnText, QuotingFollowsTheRuntimeRules)
{
    EXPECT_STREQ(uti_Spawn::QuoteArgument("plain").c_str(), "plain");
    EXPECT_STREQ(uti_Spawn::QuoteArgument("back\\slash").c_str(), "back\\slash");
    EXPECT_STREQ(uti_Spawn::QuoteArgument("").c_str(), "\"\"");
    EXPECT_STREQ(uti_Spawn::QuoteArgument("two words").c_str(), "\"two words\"");
    EXPECT_STREQ(uti_Spawn::QuoteArgument("a\"b").c_str(), "\"a\\\"b\"");
    EXPECT_STREQ(uti_Spawn::QuoteArgument("a\\\"b").c_str(), "\"a\\\\\\\"b\"");
    EXPECT_STREQ(uti_Spawn::QuoteArgument("dir\\ x\\\\").c_str(), "\"dir\\ x\\\\\\\\\"");
    EXPECT_STREQ(uti_Spawn::BuildCommandLine("prog", Arguments({"a b", "c"})).c_str(), "prog \"a b\" c");
}

TEST(UtiSpawnText, EnvironmentBlockIsSortedAndZeroSeparated)
{
    uti_Spawn::Environment env;
    env.Insert("PATH", "/bin");
    env.Insert("B", "2");
    env.Insert("A", "");
    const cow_String block = uti_Spawn::BuildEnvironmentBlock(env);
    EXPECT_EQ(std::string(block.c_str(), static_cast<size_t>(block.Length())), std::string("A=\0B=2\0PATH=/bin\0", 17));
    EXPECT_EQ(block.c_str()[block.Length()], '\0');
    EXPECT_TRUE(uti_Spawn::BuildEnvironmentBlock(uti_Spawn::Environment()).IsEmpty());
}

TEST(UtiSpawn, ArgumentsRoundTrip)
{
    const std::vector<std::string> args = {"plain",  "two words", "",          "quote\"inside", "back\\slash",
                                           "trail\\", "tr ail\\",  "a\\\\\"b c", "tab\there",     "\"\""};
    std::vector<std::string> all = {"args"};
    all.insert(all.end(), args.begin(), args.end());
    const Outcome run = RunChild(all);
    EXPECT_EQ(run.status, 0);
    std::string expected;
    for (const std::string& a : args)
        expected += std::to_string(a.size()) + ":" + a + "\n";
    EXPECT_EQ(run.out, expected);
}

// The ZUL_ entries of the child's environment table, in table order, each followed by ";".
std::string ZulEntries(const uti_Spawn::Environment& env)
{
    const std::string table = RunChild({"environ"}, env).out;
    std::string ours;
    for (size_t at = 0, end; at < table.size(); at = end + 1) {
        end = table.find('\n', at);
        const std::string line = table.substr(at, end - at);
        if (line.compare(0, 4, "ZUL_") == 0)
            ours += line + ";";
    }
    return ours;
}

TEST(UtiSpawn, EnvironmentMapOrInheritance)
{
    zul_test::SetEnvironment("ZUL_SPAWN_PARENT", "from parent");
    EXPECT_NE(ZulEntries(uti_Spawn::Environment()).find("ZUL_SPAWN_PARENT=from parent;"), std::string::npos);
    EXPECT_STREQ(uti_Spawn::getEnvironment().ConstGet("ZUL_SPAWN_PARENT").c_str(), "from parent");
    uti_Spawn::Environment env;
    env.Insert("ZUL_C", "3");
    env.Insert("ZUL_A", "1 one");
    env.Insert("ZUL_B", "");
    EXPECT_EQ(ZulEntries(env), "ZUL_A=1 one;ZUL_B=;ZUL_C=3;") << "the map alone, in the block's ascending order";
    zul_test::SetEnvironment("ZUL_SPAWN_PARENT", nullptr);
}

TEST(UtiSpawn, StandardStreamsRedirected)
{
    std::string input;
    for (int i = 0; i < 5000; ++i)
        input += "line " + std::to_string(i) + "\n";
    const Outcome cat = RunChild({"cat"}, uti_Spawn::Environment(), input);
    EXPECT_EQ(cat.status, 0);
    EXPECT_EQ(cat.out, input);

    EXPECT_EQ(RunChild({"mixed"}, uti_Spawn::Environment(), "", true).out, "out1\nerr\nout2\n");

    // Output and errors to the same handed-over descriptor: it is closed once, both land there.
    zul_test::TempDir dir;
    const int fd = zul_test::OpenForWriting(dir.File("both"));
    uti_Redirection both(-1, fd, fd);
    uti_Spawn child;
    child.Start(ChildPath().c_str(), Arguments({"mixed"}), both);
    EXPECT_EQ(both.Descriptor(1), -1);
    EXPECT_EQ(both.Descriptor(2), -1);
    EXPECT_EQ(child.Reap(0), 0);
    EXPECT_EQ(zul_test::ReadFileBytes(dir.File("both")), "out1\nerr\nout2\n");
}

TEST(UtiSpawn, ExitStatusesAndReaping)
{
    for (int code : {0, 3, 42}) {
        uti_Redirection inherit;
        uti_Spawn child;
        child.Start(ChildPath().c_str(), Arguments({"exit", std::to_string(code)}), inherit);
        EXPECT_EQ(child.Reap(0), code);
        EXPECT_FALSE(child.IsRunning());
        EXPECT_EQ(child.Reap(0), code);  // stored status, at once
        EXPECT_EQ(child.Kill(), -1);     // nothing left to end
    }
    EXPECT_EQ(uti_Spawn::AndWait(ChildPath().c_str(), uti_Spawn::Environment()), 7);
}

TEST(UtiSpawn, PollKillAndDetach)
{
    uti_Redirection inherit;
    uti_Spawn sleeper;
    sleeper.Start(ChildPath().c_str(), Arguments({"sleep", "30000"}), inherit);
    EXPECT_TRUE(sleeper.IsRunning());
    EXPECT_EQ(sleeper.Reap(1), -1);  // still running after a one-second wait: last known status
    EXPECT_TRUE(sleeper.IsRunning());
    EXPECT_EQ(sleeper.Kill(), 0);
    EXPECT_EQ(sleeper.Reap(0), -1);
    EXPECT_FALSE(sleeper.IsRunning());

    uti_Spawn detached;
    detached.Start(ChildPath().c_str(), Arguments({"sleep", "100"}), inherit);
    detached.Detach();
    EXPECT_FALSE(detached.IsRunning());
    EXPECT_EQ(detached.Status(), 86);
    EXPECT_EQ(detached.Reap(0), 86);
}

TEST(UtiSpawn, WaitForAnyAndAll)
{
    uti_Redirection inherit;
    uti_Spawn sleeper, quick, second;
    sleeper.Start(ChildPath().c_str(), Arguments({"sleep", "30000"}), inherit);
    quick.Start(ChildPath().c_str(), Arguments({"exit", "5"}), inherit);
    uti_Spawn* pair[] = {&sleeper, &quick};
    EXPECT_EQ(uti_Spawn::waitForAny(pair, 2), &quick);
    EXPECT_EQ(quick.Status(), 5);
    EXPECT_TRUE(sleeper.IsRunning());
    EXPECT_EQ(uti_Spawn::waitForAny(pair, 2), &quick);  // already finished: first in order

    second.Start(ChildPath().c_str(), Arguments({"sleep", "200"}), inherit);
    uti_Spawn* waiting[] = {&second, &sleeper};
    uti_Spawn* onlySleeper[] = {&sleeper};
    EXPECT_EQ(uti_Spawn::waitForAll(waiting, 1, 0), 0);  // budget 0: without limit
    EXPECT_EQ(second.Status(), 0);
    EXPECT_EQ(sleeper.Kill(), 0);
    EXPECT_EQ(uti_Spawn::waitForAll(onlySleeper, 1, 0), 0);
    EXPECT_EQ(uti_Spawn::waitForAll(waiting, 2, 5), 0);
    EXPECT_EQ(uti_Spawn::waitForAny(pair, 0), nullptr);
}

TEST(UtiSpawn, TraceWithDebugFlag)
{
    uti_Spawn::Environment env;
    env.Insert("ZUL_TRACED", "yes");
    const std::string child = ChildPath();
    testing::internal::CaptureStdout();
    typ_DebugFlags::SetDebugFlags("uti", 3);
    uti_Redirection redirection(-1, -1, 1);
    uti_Spawn spawn;
    spawn.Start(child.c_str(), Arguments({"exit", "two words"}), redirection, env);
    uti_Spawn* all[] = {&spawn};
    uti_Spawn::waitForAll(all, 1, 0);
    typ_DebugFlags::SetDebugFlags("uti", 0);
    const std::string trace = testing::internal::GetCapturedStdout();
    const std::string line = uti_Spawn::BuildCommandLine(child.c_str(), Arguments({"exit", "two words"})).c_str();
    EXPECT_NE(trace.find("uti_Spawn - spawning: " + line + "\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("              argument 1: two words\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("              env: ZUL_TRACED=yes\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("uti_Spawn: redirecting standard handle 2"), std::string::npos) << trace;
    EXPECT_NE(trace.find("uti_Spawn::waitForAll reaped process #0"), std::string::npos) << trace;
}

TEST(UtiSpawn, CommandLookup)
{
    zul_test::TempDir dir;
    const std::string file = dir.File(std::string("zul_tool") + zul_test::kExeSuffix);
    zul_test::WriteFileBytes(file, "not a program");
    zul_test::MakeExecutable(file);
    const char* oldPath = std::getenv("PATH");
    const std::string saved = oldPath ? oldPath : "";
    zul_test::SetEnvironment("PATH", (dir.Path() + zul_test::kPathListSeparator + saved).c_str());
    EXPECT_STREQ(Finder::FindCommand("zul_tool").AbsolutePathName().c_str(), file.c_str());
#if defined(_WIN32)
    // ".exe" is recognised in any case and then not appended again.
    EXPECT_STREQ(Finder::FindCommand("zul_tool.EXE").FileName().c_str(), "zul_tool.EXE");
#else
    // A file without execute permission is not a command.
    chmod(file.c_str(), 0644);
    const auto e = zul_test::Raised<uti_CmdFailedException>([] { Finder::FindCommand("zul_tool"); });
    ASSERT_TRUE(e.has_value());
    EXPECT_NE(std::string(e->JournalMessage().c_str()).find(file), std::string::npos);
    EXPECT_EQ(e->DynTypeId(), uti_CmdFailedException::TypeId());
#endif
    zul_test::SetEnvironment("PATH", saved.c_str());
}

TEST(UtiSpawn, FailuresCloseEverythingHandedOver)
{
    zul_test::TempDir dir;
    const int before = zul_test::OpenDescriptorCount();
    uti_Redirection redirection(zul_test::OpenForWriting(dir.File("in")), zul_test::OpenForWriting(dir.File("out")), 1);
    uti_Spawn child;
    const auto notFound = zul_test::Raised<uti_CommandNotFoundException>(
        [&] { child.Start("zul_no_such_command", Arguments({"x"}), redirection); });
    ASSERT_TRUE(notFound.has_value());
    EXPECT_STREQ(notFound->Command().c_str(), "zul_no_such_command");
    EXPECT_NE(std::string(notFound->AsString().c_str()).find("zul_no_such_command"), std::string::npos);
    EXPECT_STREQ(notFound->PythonType().c_str(), "CommandError");
    for (int i = 0; i < uti_Redirection::Count; ++i)
        EXPECT_EQ(redirection.Descriptor(i), -1);
    EXPECT_EQ(zul_test::OpenDescriptorCount(), before);

    // Found, but the system cannot start it.
    const std::string bad = dir.File(std::string("bad") + zul_test::kExeSuffix);
    zul_test::WriteFileBytes(bad, "not a program\n");
    zul_test::MakeExecutable(bad);
    uti_Redirection second(-1, zul_test::OpenForWriting(dir.File("out2")), -1);
    const auto failed = zul_test::Raised<uti_IOErrorException>([&] { child.Start(bad.c_str(), Arguments({}), second); });
    ASSERT_TRUE(failed.has_value());
#if defined(_WIN32)
    EXPECT_STREQ(failed->Call().c_str(), "CreateProcess");
#else
    EXPECT_STREQ(failed->Call().c_str(), "posix_spawn");
#endif
    EXPECT_EQ(failed->Spawn(), &child);
    EXPECT_NE(failed->Error(), 0);
    EXPECT_EQ(second.Descriptor(1), -1);
    EXPECT_EQ(zul_test::OpenDescriptorCount(), before);
    EXPECT_FALSE(child.IsRunning());
}

}  // namespace
