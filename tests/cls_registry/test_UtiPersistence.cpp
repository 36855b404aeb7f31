// The uti module's persistent classes written through the binary visitors and read back.
#include <gtest/gtest.h>

#include <cmath>
#include <fcntl.h>
#include <memory>
#include <string>

#include "cls/cls_BinVisitor.h"
#include "cls/cls_MetadataRegistrar.h"
#include "uti/uti_CoordCont3D.h"
#include "uti/uti_Spawn.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::Descriptor;

const cls_ClassRegistrar& Library()
{
    return cls_MetadataRegistrar::Instance().ThirdRegistrar();
}

// Writes one object of class `id` and reads it back.
template <class Root>
std::unique_ptr<Root> RoundTrip(unsigned id, const Root& object)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("object.bin");
    {
        Descriptor out(path, O_WRONLY | O_CREAT | O_TRUNC);
        utl_BinOStream stream(out.fd(), omi_Swapper::EndianType());
        cls_BinWriteVisitor(stream, Library()).WriteObject(id, &object);
    }
    Descriptor in(path, O_RDONLY);
    utl_BinIStream stream(in.fd(), omi_Swapper::EndianType());
    return std::unique_ptr<Root>(static_cast<Root*>(cls_BinReadVisitor(stream, Library()).ReadObject()));
}

TEST(UtiPersistence, CoordinatesComeBackEqualFromBothStorages)
{
    const std::unique_ptr<uti_Coord3D> point = RoundTrip(uti_Coord3D::TypeId(), uti_Coord3D(1.5f, -2.25f, 1e30f));
    EXPECT_EQ(*point, uti_Coord3D(1.5f, -2.25f, 1e30f));

    float flat[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, -1};  // three points adopted, one float left over
    const uti_CoordCont3D adopted(flat, 10, 3);
    const std::unique_ptr<uti_CoordCont3D> a = RoundTrip(uti_CoordCont3D::TypeId(), adopted);
    EXPECT_EQ(a->Count(), 3);
    EXPECT_TRUE(*a == adopted);

    uti_CoordCont3D listed;
    for (int i = 0; i < 150; ++i)
        listed.Append(float(i), float(i) / 3, float(-i));
    const std::unique_ptr<uti_CoordCont3D> b = RoundTrip(uti_CoordCont3D::TypeId(), listed);
    EXPECT_TRUE(*b == listed);
    EXPECT_TRUE(*RoundTrip(uti_CoordCont3D::TypeId(), uti_CoordCont3D()) == uti_CoordCont3D());
}

TEST(UtiPersistence, CommandExceptionsKeepTheirClassAndFields)
{
    const uti_IOErrorException io("CreateProcess", nullptr, 5);
    std::unique_ptr<nex_Exception> r1 = RoundTrip<nex_Exception>(io.DynTypeId(), io);
    const uti_IOErrorException* back = dynamic_cast<const uti_IOErrorException*>(r1.get());
    ASSERT_NE(back, nullptr);
    EXPECT_STREQ(back->Call().c_str(), "CreateProcess");
    EXPECT_EQ(back->Error(), 5);
    EXPECT_STREQ(back->UserReport().c_str(), io.UserReport().c_str());

    const uti_CommandNotFoundException missing("no_such_tool");
    std::unique_ptr<nex_Exception> r2 = RoundTrip<nex_Exception>(missing.DynTypeId(), missing);
    const uti_CommandNotFoundException* m = dynamic_cast<const uti_CommandNotFoundException*>(r2.get());
    ASSERT_NE(m, nullptr);
    EXPECT_STREQ(m->Command().c_str(), "no_such_tool");
    EXPECT_STREQ(m->UserReport().c_str(), missing.UserReport().c_str());

    const uti_InterruptedException stopped("stopped by the user");
    std::unique_ptr<nex_Exception> r3 = RoundTrip<nex_Exception>(stopped.DynTypeId(), stopped);
    ASSERT_NE(dynamic_cast<const uti_InterruptedException*>(r3.get()), nullptr);
    EXPECT_STREQ(r3->UserReport().c_str(), stopped.UserReport().c_str());
}

TEST(UtiPersistence, TheModuleRegistersItsClassesWithTheirFlags)
{
    cls_MetadataRegistrar& all = cls_MetadataRegistrar::Instance();
    for (unsigned id : {uti_IOErrorException::TypeId(), uti_CmdFailedException::TypeId(), uti_InterruptedException::TypeId(),
                        uti_Coord3D::TypeId(), uti_CoordCont3D::TypeId()})
        EXPECT_EQ(all.ThirdRegistrar().ConstGet(id).GetClassID(), id) << std::hex << id;
    // The coordinates also go to the second registrar, the container to the primary one too.
    EXPECT_EQ(all.SecondRegistrar().ConstGet(uti_Coord3D::TypeId()).GetClassID(), uti_Coord3D::TypeId());
    EXPECT_EQ(all.SecondRegistrar().ConstGet(uti_CoordCont3D::TypeId()).GetClassID(), uti_CoordCont3D::TypeId());
    EXPECT_EQ(all.PrimaryRegistrar().ConstGet(uti_CoordCont3D::TypeId()).GetClassID(), uti_CoordCont3D::TypeId());
    EXPECT_NE(all.PrimaryRegistrar().ConstGet(uti_Coord3D::TypeId()).GetClassID(), uti_Coord3D::TypeId());
}

}  // namespace
