// Process-wide singletons made on first use.
#include <gtest/gtest.h>

#include "omi/omi_Singleton.h"

namespace {

class Registry : public omi_Singleton<Registry> {
public:
    static int made;
    static int destroyed;
    Registry() { ++made; }
    ~Registry() { ++destroyed; }
    int value = 0;
    static Registry* Peek() { return omi_SingletonBase<Registry>::Instance(); }
};
int Registry::made = 0;
int Registry::destroyed = 0;

TEST(OmiSingleton, MadeOnFirstUseAndSharedAfterwards)
{
    EXPECT_EQ(Registry::Peek(), nullptr) << "the base's Instance never creates";
    Registry& a = Registry::Instance();
    Registry& b = Registry::Instance();
    EXPECT_EQ(&a, &b);
    EXPECT_EQ(Registry::made, 1);
    EXPECT_EQ(Registry::Peek(), &a);
}

TEST(OmiSingleton, FinalizeTwiceIsHarmlessAndTheNextInstanceIsFresh)
{
    Registry::Instance().value = 7;
    const int destroyedBefore = Registry::destroyed;
    Registry::Finalize();
    Registry::Finalize();
    EXPECT_EQ(Registry::destroyed, destroyedBefore + 1);
    EXPECT_EQ(Registry::Peek(), nullptr);
    EXPECT_EQ(Registry::Instance().value, 0);
    Registry::Finalize();
}

}  // namespace
