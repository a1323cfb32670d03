#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "model/ObjectRegistry.h"

namespace {

using model::IObject;
using model::ObjectRegistry;
using model::Ptr;

struct Probe : IObject {
    int value = 0;
};
struct OtherProbe : IObject {
    int value = 1;
};

class CountingFactory : public model::IregClass {
public:
    explicit CountingFactory(int* deaths) : deaths_(deaths) {}
    ~CountingFactory() override { ++*deaths_; }
    IObject* create() const override { return new Probe(); }
    IObject* copy(const IObject& source) const override {
        return new Probe(dynamic_cast<const Probe&>(source));
    }

private:
    int* deaths_;
};

TEST(ObjectRegistry, CreatesKnownClassesAndRefusesUnknownOnes) {
    ObjectRegistry reg;
    reg.registerClass<Probe>("test::Probe");
    std::size_t before = reg.objectCount();
    EXPECT_FALSE(reg.createObject("test::Nothing"));
    EXPECT_EQ(reg.objectCount(), before);

    Ptr<IObject> a = reg.createObject("test::Probe");
    ASSERT_TRUE(a);
    EXPECT_NE(dynamic_cast<Probe*>(a.get()), nullptr);
    EXPECT_EQ(a->registry, &reg);
    EXPECT_EQ(a->refCount.load(), 1u);
    EXPECT_EQ(reg.objectCount(), before + 1);
    a.reset();
    EXPECT_EQ(reg.objectCount(), before);
}

TEST(ObjectRegistry, CopyMakesANewRegisteredObject) {
    ObjectRegistry reg;
    reg.registerClass<Probe>("test::Probe");
    Probe source;
    source.value = 42;
    EXPECT_EQ(source.registry, nullptr);
    Ptr<IObject> copy = reg.copyObject(source, "test::Probe");
    ASSERT_TRUE(copy);
    EXPECT_EQ(dynamic_cast<Probe&>(*copy).value, 42);
    EXPECT_EQ(copy->registry, &reg);
    EXPECT_EQ(copy->refCount.load(), 1u);
    EXPECT_FALSE(reg.copyObject(source, "test::Unknown"));
}

TEST(ObjectRegistry, ReregisteringReplacesAndDeletesTheOldFactory) {
    ObjectRegistry reg;
    int deaths = 0;
    reg.registerClass("test::Probe", std::make_unique<CountingFactory>(&deaths));
    std::size_t classes = reg.classCount();
    reg.registerClass<OtherProbe>("test::Probe");
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(reg.classCount(), classes);
    EXPECT_NE(dynamic_cast<OtherProbe*>(reg.createObject("test::Probe").get()), nullptr);
}

TEST(ObjectRegistry, DirectObjectsNeverTouchTheRegistry) {
    ObjectRegistry reg;
    reg.registerClass<Probe>("test::Probe");
    Ptr<IObject> kept = reg.createObject("test::Probe");
    {
        Ptr<IObject> direct(new Probe());
        EXPECT_EQ(direct->registry, nullptr);
    }
    EXPECT_EQ(reg.objectCount(), 1u);
    EXPECT_EQ(reg.objects().front(), kept.get());
}

// The indexed forget must leave the list in exactly the order a linear search-and-swap would.
TEST(ObjectRegistry, IndexedForgetMatchesLinearSearchAndSwap) {
    ObjectRegistry reg;
    reg.registerClass<Probe>("test::Probe");
    std::mt19937 rng(12345);
    for (int round = 0; round < 50; ++round) {
        std::vector<Ptr<IObject>> live;
        std::vector<IObject*> reference;
        for (int step = 0; step < 400; ++step) {
            bool create = live.empty() || std::uniform_int_distribution<int>(0, 2)(rng) != 0;
            if (create) {
                live.push_back(reg.createObject("test::Probe"));
                reference.push_back(live.back().get());
            } else {
                std::size_t pick = std::uniform_int_distribution<std::size_t>(0, live.size() - 1)(rng);
                IObject* victim = live[pick].get();
                auto it = std::find(reference.begin(), reference.end(), victim);
                *it = reference.back();
                reference.pop_back();
                live.erase(live.begin() + static_cast<std::ptrdiff_t>(pick));
            }
            ASSERT_EQ(reg.objects(), reference) << "round " << round << " step " << step;
        }
        live.clear();
        ASSERT_EQ(reg.objectCount(), 0u);
    }
}

}  // namespace
