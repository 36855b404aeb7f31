// The exception hierarchy: reports, type ids, propagation as the dynamic type, copies.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include "cow/cow_COW.h"
#include "nex/nex_Exception.h"
#include "nex/nex_OutOfMemoryException.h"

namespace {

class DemoCommandException : public nex_CommandException {
public:
    explicit DemoCommandException(const char* text) : m_text(text) {}
    atr_String JournalMessage() const override { return m_text; }
    atr_String PythonType() const override { return "DemoError"; }
    [[noreturn]] void Propagate() const override { throw DemoCommandException(*this); }
    nex_Exception* Copy() const override { return new DemoCommandException(*this); }

private:
    atr_String m_text;
};

TEST(NexReports, ThrowRecordsTheSiteAndHandlersSeeTheDynamicType)
{
    nex_TextException e("disk full");  // not thrown yet: empty file, line 0
    EXPECT_EQ(e.UserReport(), "disk full");
    EXPECT_EQ(e.DeveloperReport(), "Exception: disk full in file  at line 0");
    try {
        e.Throw("nex/impl/nex_Demo", 42);
        FAIL() << "Throw returned";
    } catch (const nex_Exception& caught) {
        EXPECT_EQ(caught.DynTypeId(), 0x1F0002u);
        EXPECT_EQ(caught.DeveloperReport(), "Exception: disk full in file nex/impl/nex_Demo at line 42");
        EXPECT_NE(dynamic_cast<const nex_TextException*>(&caught), nullptr);
    }
}

TEST(NexReports, PropagateRethrowsTheConcreteClass)
{
    nex_BadCastException original("cast");
    nex_Exception& asBase = original;
    EXPECT_THROW(asBase.Propagate(), nex_BadCastException);
}

TEST(NexReports, EachClassRendersAsItsRuleSays)
{
    EXPECT_EQ(nex_ExitException("", 3).AsString(), "Exit code: 3");
    EXPECT_EQ(nex_ExitException("bye", 3).AsString(), "bye");
    EXPECT_EQ(nex_AssertException("!hasTable").UserReport(), "!hasTable");
    EXPECT_EQ(nex_InvalidObjException("stale").UserReport(), "stale");
    EXPECT_EQ(DemoCommandException("bad input").UserReport(), "DemoError: bad input");
    const nex_SystemErrorException sys(omi_SystemErrorCode::FromErrno(ENOENT));
    EXPECT_EQ(sys.UserReport(), omi_SystemErrorCode::FromErrno(ENOENT).GetText());
}

TEST(NexReports, TypeIdsOfEveryClass)
{
    EXPECT_EQ(nex_Exception::TypeId(), 0x1F0001u);
    EXPECT_EQ(nex_TextException::TypeId(), 0x1F0002u);
    EXPECT_EQ(nex_CommandException::TypeId(), 0x1F0003u);
    EXPECT_EQ(nex_AssertException::TypeId(), 0x1F0004u);
    EXPECT_EQ(nex_BadCastException::TypeId(), 0x1F0005u);
    EXPECT_EQ(nex_ExitException::TypeId(), 0x1F0006u);
    EXPECT_EQ(nex_InvalidObjException::TypeId(), 0x1F0007u);
    EXPECT_EQ(nex_SystemErrorException::TypeId(), 0x1F0008u);
    EXPECT_EQ(nex_OutOfMemoryException::TypeId(), 0x1F0009u);
    EXPECT_EQ(DemoCommandException("x").DynTypeId(), 0x1F0003u);
}

TEST(NexReports, AssertMacroRecordsConditionAndSource)
{
    const bool hasTable = true;
    try {
        NEX_ASSERT_AT(!hasTable, "nex/impl/nex_Demo");
        FAIL() << "the assertion did not throw";
    } catch (const nex_AssertException& e) {
        EXPECT_EQ(e.Condition(), "!hasTable");
        EXPECT_EQ(e.File(), "nex/impl/nex_Demo");
        EXPECT_GT(e.Line(), 0);
    }
    EXPECT_NO_THROW(NEX_ASSERT_AT(hasTable, "x"));
}

TEST(NexCopies, VirtualCopyKeepsTheDynamicTypeInAHandle)
{
    cow_COW<nex_Exception, cow_Virtual<nex_Exception>> held(new nex_OutOfMemoryException(nex_OutOfMemoryAllocation));
    cow_COW<nex_Exception, cow_Virtual<nex_Exception>> other(held);
    nex_Exception& mine = other.Get();  // detaches through Copy()
    EXPECT_NE(&mine, held.GetPtr());
    EXPECT_EQ(mine.DynTypeId(), 0x1F0009u);
    EXPECT_THROW(mine.Propagate(), nex_OutOfMemoryException);
}

TEST(NexOutOfMemory, MessagesAreTheProductAndGenericTextsByteForByte)
{
    atr_String* generic = nex_OutOfMemoryException::GetOutOfMemoryMsgGeneric();
    ASSERT_NE(generic, nullptr);
    const atr_String product = nex_OutOfMemoryException(nex_OutOfMemoryAllocation).JournalMessage();
    EXPECT_TRUE(product.StartsWith(
        "*** Error: An out of memory error occurred, or the Tavrin/Studio memory limit was reached.\n \n"));
    EXPECT_NE(product.Find(" session.setValues(kernelMemoryLimit=valueInMBytes) \n \n"), -1);
    EXPECT_TRUE(generic->StartsWith("*** Error: An out of memory error occurred. On 32-bit versions of Windows"));
    EXPECT_EQ(nex_OutOfMemoryException(nex_OutOfMemoryAllocation).PythonType(), "OutOfMemory");
    EXPECT_EQ(nex_OutOfMemoryException(nex_OutOfMemoryAllocation).UserReport(), product);
}

TEST(NexOutOfMemory, EachMessageConstructionAppendsToBothTexts)
{
    atr_String* generic = nex_OutOfMemoryException::GetOutOfMemoryMsgGeneric();
    ASSERT_NE(generic, nullptr);
    const int genericBefore = generic->Length();
    nex_OutOfMemoryException a(atr_String("A"), nex_OutOfMemoryLimit);
    nex_OutOfMemoryException b(atr_String("B"), nex_OutOfMemoryLimit);
    EXPECT_TRUE(generic->EndsWith("AB"));
    EXPECT_EQ(generic->Length(), genericBefore + 2);
    EXPECT_TRUE(b.JournalMessage().EndsWith("AB"));
    EXPECT_EQ(a.Message(), "A");
}

TEST(NexOutOfMemory, AllocationFailureRaisesTheLibraryException)
{
    mem_TestFailAllocation(1);
    try {
        (void)mem_OperatorNewThrow(64);
        mem_TestFailAllocation(0);
        FAIL() << "the armed allocation succeeded";
    } catch (const nex_Exception& e) {
        mem_TestFailAllocation(0);
        EXPECT_EQ(e.DynTypeId(), nex_OutOfMemoryException::TypeId());
        const nex_OutOfMemoryException* oom = dynamic_cast<const nex_OutOfMemoryException*>(&e);
        ASSERT_NE(oom, nullptr);
        EXPECT_EQ(oom->Reason(), nex_OutOfMemoryAllocation);
        EXPECT_EQ(oom->Message(), "");
    }
}

}  // namespace
