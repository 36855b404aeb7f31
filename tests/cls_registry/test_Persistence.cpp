// The registrations made by the modules at start-up, and exceptions written through the binary
// visitors and read back as the class that was written.
#include <gtest/gtest.h>

#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "cls/cls_BinVisitor.h"
#include "cls/cls_MetadataRegistrar.h"
#include "nex/nex_OutOfMemoryException.h"
#include "nex/nex_TypeTable.h"
#include "uti/uti_FileUtils.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::Descriptor;

const cls_ClassRegistrar& Library()
{
    return cls_MetadataRegistrar::Instance().ThirdRegistrar();
}

// Writes the exceptions as objects of their dynamic class into one file and reads them back.
std::vector<std::unique_ptr<nex_Exception>> RoundTrip(const std::vector<const nex_Exception*>& written)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("objects.bin");
    {
        Descriptor out(path, O_WRONLY | O_CREAT | O_TRUNC);
        utl_BinOStream stream(out.fd(), omi_Swapper::EndianType());
        cls_BinWriteVisitor writer(stream, Library());
        for (const nex_Exception* e : written)
            writer.WriteObject(e->DynTypeId(), static_cast<const nex_Exception*>(e));
    }
    std::vector<std::unique_ptr<nex_Exception>> read;
    Descriptor in(path, O_RDONLY);
    utl_BinIStream stream(in.fd(), omi_Swapper::EndianType());
    cls_BinReadVisitor reader(stream, Library());
    for (size_t i = 0; i < written.size(); ++i)
        read.emplace_back(static_cast<nex_Exception*>(reader.ReadObject()));
    EXPECT_THROW(reader.ReadObject(), utl_BinStreamEOF);
    return read;
}

TEST(ClsStartUp, NexRegistersItsNineClassesInClassNumberOrder)
{
    const char* const names[] = {"nex_Exception",           "nex_TextException",        "nex_CommandException",
                                 "nex_AssertException",     "nex_BadCastException",     "nex_ExitException",
                                 "nex_InvalidObjException", "nex_SystemErrorException", "nex_OutOfMemoryException"};
    const cls_ClassRegistrar& r = Library();
    for (unsigned n = 1; n <= 9; ++n) {
        const unsigned id = 0x1F0000u + n;
        EXPECT_EQ(r.GetClassID(names[n - 1]), id) << names[n - 1];
        EXPECT_EQ(r.ConstGet(id).GetName(), names[n - 1]);
        EXPECT_EQ(r.ConstGet(id).GetBaseClassID(), n == 1 ? 1u : 0x1F0001u);
        EXPECT_EQ(r.ConstGet(id).GetCtor() == nullptr, n == 1 || n == 3) << names[n - 1];
        EXPECT_STREQ(typ_ArchCompTable::GetName(id), names[n - 1]);
    }
    cow_1DArray<cls_ClassMetadataHld> list = cls_MetadataRegistrar::Instance().ThirdRegistrar().GetMDList();
    std::vector<std::string> nex;
    for (int i = 0; i < list.Size(); ++i)
        if (list[i].GetRef().GetClassID() >> 16 == 0x1F)
            nex.push_back(list[i].GetRef().GetName().c_str());
    EXPECT_EQ(nex, std::vector<std::string>(names, names + 9));

    EXPECT_EQ(r.ConstGet(nex_ExitException::TypeId()).MaxFieldID(), 1);
    EXPECT_EQ(r.ConstGet(nex_OutOfMemoryException::TypeId()).FindAttribute(2)->m_Type, cls_AttrUid);
    EXPECT_TRUE(r.InheritanceCheck(nex_OutOfMemoryException::TypeId(), nex_Exception::TypeId()));
}

TEST(ClsStartUp, OtherModulesRegisterOnlyWhereTheirFlagsSay)
{
    cls_MetadataRegistrar& m = cls_MetadataRegistrar::Instance();
    EXPECT_TRUE(m.ThirdRegistrar().ClassIsPresent(cls_BadDataException::TypeId()));
    EXPECT_TRUE(m.ThirdRegistrar().ClassIsPresent(cls_UnknownClassException::TypeId()));
    EXPECT_EQ(m.ThirdRegistrar().GetClassID("uti_PreCheckFileException"), uti_PreCheckFileException::TypeId());
    EXPECT_TRUE(m.ThirdRegistrar().InheritanceCheck(uti_PreCheckFileException::TypeId(), nex_TextException::TypeId()));
    // Third-registrar registrations are not recorded for replay nor made elsewhere.
    EXPECT_FALSE(m.PrimaryRegistrar().ClassIsPresent(nex_Exception::TypeId()));
    EXPECT_FALSE(m.SecondRegistrar().ClassIsPresent(nex_Exception::TypeId()));
}

class DemoCommand : public nex_CommandException {
public:
    atr_String JournalMessage() const override { return "journal"; }
    atr_String PythonType() const override { return "Demo"; }
    [[noreturn]] void Propagate() const override { throw DemoCommand(*this); }
    nex_Exception* Copy() const override { return new DemoCommand(*this); }
    // Written under the abstract class it derives from, which the registry cannot build.
    unsigned DynTypeId() const override { return nex_CommandException::TypeId(); }
};

TEST(ClsPersistence, EveryNexExceptionComesBackAsItsOwnClass)
{
    nex_TextException text("text message");
    nex_AssertException assertion("!hasTable");
    nex_BadCastException badCast("Bad Cast: From `a' To 'b'.");
    nex_ExitException exitNoText("", 3);
    nex_ExitException exitText("leaving", -12);
    nex_InvalidObjException invalid("");
    nex_SystemErrorException system(omi_SystemErrorCode::FromErrno(2));
    nex_OutOfMemoryException memory(nex_OutOfMemoryLimit);
    memory.SetSecondUid(cls_Uid(0x0123456789ABCDEFull));
    uti_PreCheckFileException precheck(uti_PreCheckFileException::NotWriteable, "/x/y");

    const std::vector<const nex_Exception*> written = {&text,   &assertion, &badCast, &exitNoText, &exitText,
                                                       &invalid, &system,   &memory,  &precheck};
    const auto read = RoundTrip(written);
    ASSERT_EQ(read.size(), written.size());
    for (size_t i = 0; i < written.size(); ++i) {
        ASSERT_NE(read[i], nullptr);
        EXPECT_EQ(typeid(*read[i]), typeid(*written[i])) << i;
        EXPECT_EQ(read[i]->DynTypeId(), written[i]->DynTypeId());
        EXPECT_EQ(read[i]->AsString(), written[i]->AsString()) << i;
        EXPECT_EQ(read[i]->Line(), 0);
    }
    const auto& exit = dynamic_cast<const nex_ExitException&>(*read[4]);
    EXPECT_EQ(exit.ExitCode(), -12);
    EXPECT_EQ(exit.Message(), "leaving");
    EXPECT_EQ(dynamic_cast<const nex_SystemErrorException&>(*read[6]).Code(), system.Code());
    const auto& oom = dynamic_cast<const nex_OutOfMemoryException&>(*read[7]);
    EXPECT_EQ(oom.Reason(), nex_OutOfMemoryLimit);
    EXPECT_EQ(oom.SecondUid(), memory.SecondUid());
    EXPECT_EQ(dynamic_cast<const uti_PreCheckFileException&>(*read[8]).GetReason(),
              uti_PreCheckFileException::NotWriteable);

    // The message constructor's text survives as well.
    nex_OutOfMemoryException withText("ran dry", nex_OutOfMemoryAllocation);
    const auto again = RoundTrip({&withText});
    EXPECT_EQ(dynamic_cast<const nex_OutOfMemoryException&>(*again[0]).Message(), "ran dry");
}

// Raw bytes of one object, for data the writer would not make.
std::string ReadBackFailure(void (*fill)(utl_BinOStream&))
{
    zul_test::TempDir dir;
    const std::string path = dir.File("bad.bin");
    {
        Descriptor out(path, O_WRONLY | O_CREAT | O_TRUNC);
        utl_BinOStream stream(out.fd(), omi_Swapper::EndianType());
        fill(stream);
    }
    Descriptor in(path, O_RDONLY);
    utl_BinIStream stream(in.fd(), omi_Swapper::EndianType());
    cls_BinReadVisitor reader(stream, Library());
    try {
        delete static_cast<nex_Exception*>(reader.ReadObject());
    } catch (const nex_Exception& e) {
        return typeid(e).name() + std::string(": ") + e.AsString().c_str();
    }
    return "no failure";
}

void TextHeader(utl_BinOStream& s)
{
    s.WriteUInt(0x1F0002u);
    s.WriteInt(1);
}

TEST(ClsPersistence, DataThatDoesNotFitRaisesALibraryException)
{
    const std::string badData = typeid(cls_BadDataException).name();
    const std::string unknown = typeid(cls_UnknownClassException).name();
    const std::string eof = typeid(utl_BinStreamEOF).name();

    auto wrongField = ReadBackFailure([](utl_BinOStream& s) {
        TextHeader(s);
        s.WriteInt(5);
        s.WriteUchar(cls_AttrString);
        s.WriteString("x");
        s.WriteInt(-1);
    });
    EXPECT_EQ(wrongField.rfind(badData, 0), 0u) << wrongField;
    EXPECT_NE(wrongField.find("field m_Value (id 0) expected, field id 5 found"), std::string::npos) << wrongField;

    auto wrongKind = ReadBackFailure([](utl_BinOStream& s) {
        TextHeader(s);
        s.WriteInt(0);
        s.WriteUchar(cls_AttrInt);
        s.WriteInt(7);
        s.WriteInt(-1);
    });
    EXPECT_EQ(wrongKind.rfind(badData, 0), 0u) << wrongKind;

    auto extraField = ReadBackFailure([](utl_BinOStream& s) {
        TextHeader(s);
        s.WriteInt(0);
        s.WriteUchar(cls_AttrString);
        s.WriteString("x");
        s.WriteInt(1);
    });
    EXPECT_EQ(extraField, badData + ": Persistent data of class nex_TextException continues after its last field");

    auto badReason = ReadBackFailure([](utl_BinOStream& s) {
        s.WriteUInt(0x1F0009u);
        s.WriteInt(1);
        s.WriteInt(0);
        s.WriteUchar(cls_AttrString);
        s.WriteString("m");
        s.WriteInt(1);
        s.WriteUchar(cls_AttrInt);
        s.WriteInt(99);
    });
    EXPECT_EQ(badReason.rfind(badData, 0), 0u) << badReason;

    auto unknownVersion = ReadBackFailure([](utl_BinOStream& s) {
        s.WriteUInt(0x1F0002u);
        s.WriteInt(2);
    });
    EXPECT_EQ(unknownVersion, unknown + ": Persistent class 2031618 version 2 is not registered");

    auto abstract = ReadBackFailure([](utl_BinOStream& s) {
        s.WriteUInt(0x1F0001u);
        s.WriteInt(1);
    });
    EXPECT_EQ(abstract, unknown + ": Persistent class nex_Exception cannot be built");

    auto truncated = ReadBackFailure([](utl_BinOStream& s) {
        TextHeader(s);
        s.WriteInt(0);
        s.WriteUchar(cls_AttrString);
        s.WriteInt(40);  // the string's bytes are missing
    });
    EXPECT_EQ(truncated.rfind(eof, 0), 0u) << truncated;

    // The writer refuses an unregistered class before writing anything; a command exception
    // writes but cannot be read back.
    zul_test::TempDir dir;
    {
        zul_test::Descriptor out(dir.File("refused.bin"), O_WRONLY | O_CREAT | O_TRUNC);
        utl_BinOStream s(out.fd(), omi_Swapper::EndianType());
        nex_TextException text("t");
        EXPECT_THROW(cls_BinWriteVisitor(s, Library()).WriteObject(0x7F0001u, static_cast<const nex_Exception*>(&text)),
                     cls_UnknownClassException);
    }
    EXPECT_EQ(zul_test::ReadFileBytes(dir.File("refused.bin")), "");
    DemoCommand command;
    EXPECT_THROW(RoundTrip({&command}), cls_UnknownClassException);
}

// A class of the tests' own that holds a nested exception, registered in a registrar of its own.
class Holder {
public:
    Holder(int n, nex_Exception* inner) : m_N(n), m_Inner(inner) {}
    explicit Holder(const cls_ReadVisitor& r)
        : m_N(r.ReadInt(N())), m_Inner(static_cast<nex_Exception*>(r.ReadObject(Inner()))), m_Version(r.Version())
    {
    }
    void DBWrite(const cls_WriteVisitor& w) const
    {
        w.WriteInt(N(), m_N);
        w.WriteObject(Inner(), m_Inner->DynTypeId(), static_cast<const nex_Exception*>(m_Inner.get()));
    }
    static const cls_FieldHandle& N()
    {
        static const cls_FieldHandle h(0, "m_N");
        return h;
    }
    static const cls_FieldHandle& Inner()
    {
        static const cls_FieldHandle h(1, "m_Inner");
        return h;
    }
    int m_N;
    std::unique_ptr<nex_Exception> m_Inner;
    int m_Version = 0;
};

TEST(ClsPersistence, NestedObjectsKeepTheirOuterVersion)
{
    typedef cls_TypedClassMetadata<Holder> HolderMD;
    typedef cls_TypedClassMetadata<nex_TextException, nex_Exception> TextMD;
    cls_ClassRegistrar r;
    r.AddClassMD(new HolderMD("Holder", 0x600001u, 4, &HolderMD::Construct, 1u));
    r.AddClassMD(new TextMD("nex_TextException", nex_TextException::TypeId(), 1, &TextMD::Construct, 0x1F0001u));

    zul_test::TempDir dir;
    const std::string path = dir.File("nested.bin");
    Holder original(17, new nex_TextException("inside"));
    {
        Descriptor out(path, O_WRONLY | O_CREAT | O_TRUNC);
        utl_BinOStream stream(out.fd(), omi_Swapper::EndianType());
        cls_BinWriteVisitor(stream, r).WriteObject(0x600001u, &original);
    }
    Descriptor in(path, O_RDONLY);
    utl_BinIStream stream(in.fd(), omi_Swapper::EndianType());
    cls_BinReadVisitor reader(stream, r);
    void* raw = reader.ReadObject();
    std::unique_ptr<Holder> copy(static_cast<Holder*>(raw));
    EXPECT_EQ(copy->m_N, 17);
    EXPECT_EQ(copy->m_Version, 4);  // read after the nested version-1 object
    EXPECT_EQ(copy->m_Inner->AsString(), "inside");
}

}  // namespace
