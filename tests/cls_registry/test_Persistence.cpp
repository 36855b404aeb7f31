// The registrations made by the modules at start-up, and persistent objects (the exceptions of
// every module, coordinates, a class of the tests' own) written through the binary visitors and
// read back as the class that was written; data that does not fit.
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
#include "uti/uti_CoordCont3D.h"
#include "uti/uti_FileUtils.h"
#include "uti/uti_Spawn.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::Descriptor;

const cls_ClassRegistrar& Library()
{
    return cls_MetadataRegistrar::Instance().ThirdRegistrar();
}

unsigned IdOf(const nex_Exception& e)
{
    return e.DynTypeId();
}
template <class T>
unsigned IdOf(const T&)
{
    return T::TypeId();
}

// Writes a file through `write` and gives what `read` makes of it.
template <class Write, class Read>
auto ThroughFile(const cls_ClassRegistrar& registrar, Write write, Read read)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("objects.bin");
    {
        Descriptor out(path, O_WRONLY | O_CREAT | O_TRUNC);
        utl_BinOStream stream(out.fd(), omi_Swapper::EndianType());
        write(stream);
    }
    Descriptor in(path, O_RDONLY);
    utl_BinIStream stream(in.fd(), omi_Swapper::EndianType());
    cls_BinReadVisitor reader(stream, registrar);
    return read(reader);
}

// Writes the objects, each as its class, into one file and reads them back (and no more).
template <class T>
std::vector<std::unique_ptr<T>> RoundTrip(const std::vector<const T*>& written, const cls_ClassRegistrar& registrar = Library())
{
    auto write = [&](utl_BinOStream& stream) {
        cls_BinWriteVisitor writer(stream, registrar);
        for (const T* object : written)
            writer.WriteObject(IdOf(*object), object);
    };
    return ThroughFile(registrar, write, [&](const cls_BinReadVisitor& reader) {
        std::vector<std::unique_ptr<T>> read;
        for (size_t i = 0; i < written.size(); ++i)
            read.emplace_back(static_cast<T*>(reader.ReadObject()));
        EXPECT_THROW(reader.ReadObject(), utl_BinStreamEOF);
        return read;
    });
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
        EXPECT_EQ(r.ConstGet(id).GetBaseClassID(), n == 1 ? 1u : 0x1F0001u);
        EXPECT_EQ(r.ConstGet(id).GetCtor() == nullptr, n == 1 || n == 3) << names[n - 1];
        EXPECT_STREQ(typ_ArchCompTable::GetName(id), names[n - 1]);
    }
    // Each id under its name, and no other class of the module.
    cow_1DArray<cls_ClassMetadataHld> list = cls_MetadataRegistrar::Instance().ThirdRegistrar().GetMDList();
    std::vector<std::string> nex;
    for (int i = 0; i < list.Size(); ++i)
        if (list[i].GetRef().GetClassID() >> 16 == 0x1F)
            nex.push_back(list[i].GetRef().GetName().c_str());
    EXPECT_EQ(nex, std::vector<std::string>(names, names + 9));

    EXPECT_EQ(r.ConstGet(nex_ExitException::TypeId()).MaxFieldID(), 1);
    EXPECT_EQ(r.ConstGet(nex_OutOfMemoryException::TypeId()).FindAttribute(2)->m_Type, cls_AttrUid);
}

TEST(ClsStartUp, OtherModulesRegisterWhereTheirFlagsSay)
{
    // The third registrar holds every class of the library (the round trips below show that).
    cls_MetadataRegistrar& m = cls_MetadataRegistrar::Instance();
    EXPECT_EQ(m.ThirdRegistrar().GetClassID("uti_PreCheckFileException"), uti_PreCheckFileException::TypeId());
    EXPECT_TRUE(m.ThirdRegistrar().InheritanceCheck(uti_PreCheckFileException::TypeId(), nex_TextException::TypeId()));
    // Registrations for the third registrar alone are neither recorded for replay nor made
    // elsewhere; the coordinates also go to the second registrar, the container to the primary too.
    EXPECT_FALSE(m.PrimaryRegistrar().ClassIsPresent(nex_Exception::TypeId()));
    EXPECT_FALSE(m.SecondRegistrar().ClassIsPresent(nex_Exception::TypeId()));
    EXPECT_TRUE(m.SecondRegistrar().ClassIsPresent(uti_Coord3D::TypeId()));
    EXPECT_TRUE(m.SecondRegistrar().ClassIsPresent(uti_CoordCont3D::TypeId()));
    EXPECT_TRUE(m.PrimaryRegistrar().ClassIsPresent(uti_CoordCont3D::TypeId()));
    EXPECT_FALSE(m.PrimaryRegistrar().ClassIsPresent(uti_Coord3D::TypeId()));
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

TEST(ClsPersistence, EveryExceptionComesBackAsItsOwnClass)
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
    nex_OutOfMemoryException withText("ran dry", nex_OutOfMemoryAllocation);
    const uti_IOErrorException io("CreateProcess", nullptr, 5);
    const uti_CommandNotFoundException missing("no_such_tool");
    const uti_InterruptedException stopped("stopped by the user");
    const uti_CmdFailedException failed("it failed");
    const cls_BadDataException badData("bad data");
    const cls_UnknownClassException unknown("unknown class");

    const std::vector<const nex_Exception*> written = {&text,     &assertion, &badCast,  &exitNoText, &exitText,
                                                       &invalid,  &system,    &memory,   &precheck,   &withText,
                                                       &io,       &missing,   &stopped,  &failed,     &badData,
                                                       &unknown};
    const auto read = RoundTrip(written);
    ASSERT_EQ(read.size(), written.size());
    for (size_t i = 0; i < written.size(); ++i) {
        ASSERT_NE(read[i], nullptr);
        EXPECT_EQ(typeid(*read[i]), typeid(*written[i])) << i;
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
    EXPECT_EQ(dynamic_cast<const nex_OutOfMemoryException&>(*read[9]).Message(), "ran dry");
    const auto& ioBack = dynamic_cast<const uti_IOErrorException&>(*read[10]);
    EXPECT_STREQ(ioBack.Call().c_str(), "CreateProcess");
    EXPECT_EQ(ioBack.Error(), 5);
    EXPECT_STREQ(dynamic_cast<const uti_CommandNotFoundException&>(*read[11]).Command().c_str(), "no_such_tool");
}

TEST(ClsPersistence, CoordinatesComeBackEqualFromBothStorages)
{
    const uti_Coord3D point(1.5f, -2.25f, 1e30f);
    EXPECT_EQ(*RoundTrip<uti_Coord3D>({&point})[0], point);

    float flat[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, -1};  // three points adopted, one float left over
    const uti_CoordCont3D adopted(flat, 10, 3), empty;
    uti_CoordCont3D listed;
    for (int i = 0; i < 150; ++i)
        listed.Append(float(i), float(i) / 3, float(-i));
    const std::vector<const uti_CoordCont3D*> written = {&adopted, &listed, &empty};
    const auto read = RoundTrip(written);
    EXPECT_EQ(read[0]->Count(), 3);
    for (size_t i = 0; i < written.size(); ++i)
        EXPECT_TRUE(*read[i] == *written[i]) << i;
}

// Raw bytes of one object, for data the writer would not make: the failure it raises on reading.
std::string ReadBackFailure(void (*fill)(utl_BinOStream&))
{
    return ThroughFile(Library(), fill, [](const cls_BinReadVisitor& reader) -> std::string {
        try {
            delete static_cast<nex_Exception*>(reader.ReadObject());
        } catch (const nex_Exception& e) {
            return typeid(e).name() + std::string(": ") + e.AsString().c_str();
        }
        return "no failure";
    });
}

// A nex_TextException's header and the header of its field `id`.
void TextField(utl_BinOStream& s, int id, cls_AttributeType kind)
{
    s.WriteUInt(0x1F0002u);
    s.WriteInt(1);
    s.WriteInt(id);
    s.WriteUchar(kind);
}

TEST(ClsPersistence, DataThatDoesNotFitRaisesALibraryException)
{
    const std::string badData = typeid(cls_BadDataException).name() + std::string(": ");
    const std::string unknown = typeid(cls_UnknownClassException).name() + std::string(": ");
    const struct {
        void (*fill)(utl_BinOStream&);
        std::string failure;
    } cases[] = {
        {[](utl_BinOStream& s) { TextField(s, 5, cls_AttrString); s.WriteString("x"); s.WriteInt(-1); },
         badData + "Persistent data of class nex_TextException: field m_Value (id 0) expected, field id 5 found"},
        {[](utl_BinOStream& s) { TextField(s, 0, cls_AttrInt); s.WriteInt(7); s.WriteInt(-1); },
         badData + "Persistent data of class nex_TextException: field m_Value holds value kind 1, not 5"},
        {[](utl_BinOStream& s) { TextField(s, 0, cls_AttrString); s.WriteString("x"); s.WriteInt(1); },
         badData + "Persistent data of class nex_TextException continues after its last field"},
        {[](utl_BinOStream& s) {  // an out-of-memory exception with an unknown reason
             s.WriteUInt(0x1F0009u); s.WriteInt(1); s.WriteInt(0); s.WriteUchar(cls_AttrString); s.WriteString("m");
             s.WriteInt(1); s.WriteUchar(cls_AttrInt); s.WriteInt(99);
         },
         badData + "Out-of-memory reason 99 is not known"},
        {[](utl_BinOStream& s) { s.WriteUInt(0x1F0002u); s.WriteInt(2); },
         unknown + "Persistent class 2031618 version 2 is not registered"},
        {[](utl_BinOStream& s) { s.WriteUInt(0x1F0001u); s.WriteInt(1); }, unknown + "Persistent class nex_Exception cannot be built"},
        {[](utl_BinOStream& s) { TextField(s, 0, cls_AttrString); s.WriteInt(40); },  // the string's bytes are missing
         typeid(utl_BinStreamEOF).name() + std::string(": *** ERROR: End of file on binary stream.")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ReadBackFailure(c.fill), c.failure);

    // The writer refuses an unregistered class before writing anything: what follows reads back.
    // A command exception writes but cannot be read back.
    EXPECT_EQ(ReadBackFailure([](utl_BinOStream& s) {
                  const nex_TextException text("t");
                  cls_BinWriteVisitor writer(s, Library());
                  EXPECT_THROW(writer.WriteObject(0x7F0001u, static_cast<const nex_Exception*>(&text)), cls_UnknownClassException);
                  writer.WriteObject(text.DynTypeId(), static_cast<const nex_Exception*>(&text));
              }),
              "no failure");
    DemoCommand command;
    EXPECT_THROW(RoundTrip<nex_Exception>({&command}), cls_UnknownClassException);
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
    static unsigned TypeId() { return 0x600001u; }
    int m_N;
    std::unique_ptr<nex_Exception> m_Inner;
    int m_Version = 0;
};

TEST(ClsPersistence, NestedObjectsKeepTheirOuterVersion)
{
    typedef cls_TypedClassMetadata<Holder> HolderMD;
    typedef cls_TypedClassMetadata<nex_TextException, nex_Exception> TextMD;
    cls_ClassRegistrar r;
    r.AddClassMD(new HolderMD("Holder", Holder::TypeId(), 4, &HolderMD::Construct, 1u));
    r.AddClassMD(new TextMD("nex_TextException", nex_TextException::TypeId(), 1, &TextMD::Construct, 0x1F0001u));
    const Holder original(17, new nex_TextException("inside"));
    const auto copy = RoundTrip<Holder>({&original}, r);
    EXPECT_EQ(copy[0]->m_N, 17);
    EXPECT_EQ(copy[0]->m_Version, 4);  // read after the nested version-1 object
    EXPECT_EQ(copy[0]->m_Inner->AsString(), "inside");
}

}  // namespace
