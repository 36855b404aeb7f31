// The command line: the option rule, typed getters and their errors, dictionaries, and the flat
// entry points, called from C++, from a C program and from a Fortran program.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "typ/typ_DebugFlags.h"
#include "utl/utl_CommandLine.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::Arguments;

// Restores the process's own arguments after a test replaced them.
class CommandLineTest : public ::testing::Test {
protected:
    void TearDown() override { line.SetArgsList(saved); }
    utl_CommandLine& line = utl_CommandLine::Instance();
    cow_1DArrayList<cow_String> saved = Saved();

private:
    static cow_1DArrayList<cow_String> Saved()
    {
        cow_1DArrayList<cow_String> all;
        utl_CommandLine& l = utl_CommandLine::Instance();
        for (int i = 1; i < l.Size(); ++i)
            all.Append(l.ConstGet(i));
        return all;
    }
};

// Runs a program beside the test program with the arguments; answers its output.
std::string RunProgram(const std::string& program, const std::string& args)
{
    return zul_test::CommandOutput(zul_test::ProgramPath(program) + " " + args);
}

}  // namespace

TEST_F(CommandLineTest, HoldsTheProcessArgumentsAfterStartUp)
{
    ASSERT_GE(line.Size(), 1);
    EXPECT_NE(std::string(line.ConstGet(0).c_str()).find("test_cmdline"), std::string::npos);
}

TEST_F(CommandLineTest, OptionRule)
{
    char* argv[] = {(char*)"prog", (char*)"-a", (char*)"-b", (char*)"3", (char*)"x", (char*)"--long", (char*)"-n", (char*)"-5", (char*)"-v"};
    line.SetArgs(9, argv);
    EXPECT_EQ(line.Size(), 9);
    EXPECT_STREQ(line.ConstGet(4).c_str(), "x");
    EXPECT_TRUE(line.IsMember("a"));
    EXPECT_STREQ(line.ConstGetValue("a").c_str(), "");
    EXPECT_STREQ(line.ConstGetValue("b").c_str(), "3");
    EXPECT_FALSE(line.IsMember("x"));
    EXPECT_TRUE(line.IsMember("-long"));  // one "-" removed
    EXPECT_STREQ(line.ConstGetValue("n").c_str(), "");  // -5 is an option, not a value
    EXPECT_TRUE(line.IsMember("5"));
    EXPECT_TRUE(line.IsMember("v"));  // trailing flag

    char* only[] = {(char*)"prog"};
    line.SetArgs(1, only);
    EXPECT_EQ(line.Size(), 1);
    EXPECT_FALSE(line.IsMember("a"));

    line.SetArgsList(Arguments({"-first", "1", "pos"}));  // no program-name slot in this form
    EXPECT_STREQ(line.ConstGetValue("first").c_str(), "1");
    EXPECT_EQ(line.Size(), 3);
}

TEST_F(CommandLineTest, TypedGettersAndTheirErrors)
{
    line.SetArgsList(Arguments({"-n", "42", "-bad", "12a", "-empty", "-big", "5000000000", "-neg"}));
    EXPECT_EQ(line.ConstGetValueAsInt("n"), 42);
    EXPECT_EQ(line.ConstGetValueAsInt("empty"), 0);
    EXPECT_EQ(line.ConstGetValueAsInt("absent", 7), 7);
    EXPECT_EQ(line.ConstGetValueAsSizeT("big"), 5000000000ULL);
    EXPECT_EQ(line.ConstGetValueAsSizeT("absent", 9ULL), 9ULL);
    EXPECT_STREQ(line.ConstGetValue("absent", "dflt").c_str(), "dflt");

    // Present but malformed: the default does not apply.
    EXPECT_EQ(zul_test::ReportOf<utl_CmdLineArgFormatException>([&] { line.ConstGetValueAsInt("bad", 1); }),
              "Command line argument bad must have type integer");
    EXPECT_EQ(zul_test::ReportOf<utl_MissingCmdLineArgException>([&] { line.ConstGetValue("absent"); }),
              "Command line argument absent is required.");
    EXPECT_THROW(line.ConstGetValueAsSizeT("absent"), utl_MissingCmdLineArgException);
    EXPECT_THROW(line.ConstGetValueAsDictionary("absent"), utl_MissingCmdLineArgException);
}

TEST_F(CommandLineTest, DictionaryAndTheErrorOption)
{
    const cow_Map<cow_String, cow_String> d = utl_CommandLine::ParseDictionary("a=1,b,c=x=y,");
    EXPECT_EQ(d.Count(), 4);
    EXPECT_STREQ(d.ConstGet("a").c_str(), "1");
    EXPECT_STREQ(d.ConstGet("b").c_str(), "");
    EXPECT_STREQ(d.ConstGet("c").c_str(), "x=y");  // split at the first "="
    EXPECT_TRUE(d.IsMember(""));

    const int cls = typ_DebugFlags::GetDebugFlags("cls");
    const int nex = typ_DebugFlags::GetDebugFlags("nex");
    const int utl = typ_DebugFlags::GetDebugFlags("utl");
    line.SetArgsList(Arguments({"-error", "cls=3,nex,utl=0"}));
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("cls"), 3);
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("nex"), 1);
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("utl"), utl);  // level 0 is skipped
    typ_DebugFlags::SetDebugFlags("cls", cls);
    typ_DebugFlags::SetDebugFlags("nex", nex);
}

TEST_F(CommandLineTest, FlatEntryPoints)
{
    line.SetArgsList(Arguments({"-count", "17", "-label", "abcd", "-flag"}));
    int result = -1;
    UTL_COMMANDLINEINTEGER("  count ", &result, 8);
    EXPECT_EQ(result, 17);
    UTL_COMMANDLINEINTEGER("none", &result, 4);
    EXPECT_EQ(result, 0);
    UTL_COMMANDLINEISMEMBER("flag  ", &result, 6);
    EXPECT_EQ(result, 0);  // present
    UTL_COMMANDLINEISMEMBER("none", &result, 4);
    EXPECT_EQ(result, 1);

    char out[8];
    std::memset(out, '#', sizeof out);
    EXPECT_EQ(utl_CommandLineStringC("label", out, 4), 4);  // exactly the length: no padding
    EXPECT_EQ(std::string(out, 8), "abcd####");
    std::memset(out, '#', sizeof out);
    EXPECT_EQ(utl_CommandLineStringC("label", out, 3), 0);  // too short: untouched
    EXPECT_EQ(std::string(out, 8), "########");
    EXPECT_EQ(utl_CommandLineStringC("label", out, 6), 4);
    EXPECT_EQ(std::string(out, 8), "abcd  ##");
    int length = -1;
    UTL_COMMANDLINESTRING(" label ", out, &length, 7, 8);
    EXPECT_EQ(length, 4);
    EXPECT_EQ(std::string(out, 8), "abcd    ");

    char whole[16];
    EXPECT_EQ(utl_getArgs("label", whole), 4);
    EXPECT_STREQ(whole, "abcd");
    EXPECT_EQ(utl_getArgs("none", whole), 0);
}

TEST(CommandLineCallers, CProgramReadsItsOwnArguments)
{
    const std::string out = RunProgram("zul_cmdline_c", "-label abc -long 123456789 -flag --ask label long flag none");
    EXPECT_EQ(out,
              "label c=3 [abc     ] args=3 [abc]\n"
              "long c=0 [########] args=9 [123456789]\n"
              "flag c=0 [        ] args=0 []\n"
              "none c=0 [########] args=0 []\n");
}

#ifdef ZUL_TEST_FORTRAN
TEST(CommandLineCallers, FortranProgramWithCharacterLengths)
{
    const std::string out = RunProgram("zul_cmdline_fortran", "-count 31 -label xyz");
    EXPECT_EQ(out,
              "integer=31\n"
              "ismember=0\n"
              "absent=1\n"
              "string=3 [xyz       ]\n");
}
#endif
