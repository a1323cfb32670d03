#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "core/ExtException.h"
#include "core/Log.h"
#include "core/Math.h"
#include "core/Memory.h"
#include "core/Ptr.h"

namespace {

struct Counted : nq::Shared {
    explicit Counted(int* deaths) : deaths(deaths) {}
    ~Counted() override { ++*deaths; }
    int* deaths;
};
struct Derived : Counted {
    using Counted::Counted;
};

TEST(Ptr, CopyAssignAndReleaseFollowTheCount) {
    int deaths = 0;
    nq::Ptr<Counted> a(new Counted(&deaths));
    EXPECT_EQ(a->refCount.load(), 1u);
    {
        nq::Ptr<Counted> b = a;
        EXPECT_EQ(a->refCount.load(), 2u);
        nq::Ptr<Counted> c;
        c = b;  // assignment over empty
        EXPECT_EQ(a->refCount.load(), 3u);
        c = c;  // self-assignment keeps the object alive
        EXPECT_EQ(a->refCount.load(), 3u);
    }
    EXPECT_EQ(deaths, 0);
    nq::Ptr<Counted> other(new Counted(&deaths));
    a = other;  // the old object's last reference goes
    EXPECT_EQ(deaths, 1);
    a.reset();
    other.reset();
    EXPECT_EQ(deaths, 2);
    a.reset();  // releasing an empty pointer is legal
    EXPECT_EQ(deaths, 2);
}

TEST(Ptr, ConvertsUpAndCastsDown) {
    int deaths = 0;
    nq::Ptr<Derived> d(new Derived(&deaths));
    nq::Ptr<Counted> base = d;
    EXPECT_EQ(d->refCount.load(), 2u);
    auto back = nq::dynamicPtrCast<Derived>(base);
    EXPECT_EQ(back.get(), d.get());
    nq::Ptr<Counted> moved = std::move(back);
    EXPECT_FALSE(back);
    EXPECT_EQ(d->refCount.load(), 3u);
}

TEST(Ptr, ReleaseFromManyThreadsDeletesOnce) {
    int deaths = 0;
    nq::Ptr<Counted> shared(new Counted(&deaths));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([copy = shared]() mutable {
            for (int i = 0; i < 1000; ++i) {
                nq::Ptr<Counted> local = copy;
                local.reset();
            }
        });
    }
    shared.reset();
    for (auto& t : threads) {
        t.join();
    }
    EXPECT_EQ(deaths, 1);
}

TEST(ExtException, CarriesMessageSourceAndLine) {
    try {
        throw nq::ExtException("broken", "model/Vertices", 42);
    } catch (const nq::ExtException& e) {
        EXPECT_STREQ(e.what(), "broken");
        EXPECT_EQ(e.sourcePath(), "model/Vertices");
        EXPECT_EQ(e.line(), 42);
    }
    nq::ExtException here("x");
    EXPECT_NE(here.sourcePath().find("PtrTest.cpp"), std::string::npos);
    EXPECT_EQ(here.sourcePath().front(), 't') << "paths are relative to the repository";
}

TEST(Log, ReachesSinkAndFile) {
    std::string seen;
    auto previous = nq::setLogSink([&](std::string_view src, int level, std::string_view text) {
        seen = fmt::format("{}/{}/{}", src, level, text);
    });
    nq::setLogToStderr(false);
    std::string path = testing::TempDir() + "/nq_log_test.txt";
    std::remove(path.c_str());
    ASSERT_TRUE(nq::setLogFile(path));
    nq::nq_logf("NQFEXP", 8, "value {}", 7);
    ASSERT_TRUE(nq::setLogFile(""));
    nq::setLogSink(previous);
    nq::setLogToStderr(true);
    EXPECT_EQ(seen, "NQFEXP/8/value 7");
    std::FILE* f = std::fopen(path.c_str(), "rb");
    ASSERT_NE(f, nullptr);
    char buf[64] = {};
    std::size_t n = std::fread(buf, 1, sizeof buf - 1, f);
    std::fclose(f);
    EXPECT_EQ(std::string(buf, n), "[NQFEXP:8] value 7\n");
}

TEST(Memory, ExhaustionThrowsTheAllocatorText) {
    void* p = nq::nq_malloc(16);
    p = nq::nq_realloc(p, 64);
    nq::nq_free(p);
    try {
        // More than any address space holds: the allocator must report, not return null.
        volatile std::size_t huge = ~std::size_t{0} - 4096;
        nq::nq_malloc(huge);
        FAIL() << "no exception";
    } catch (const nq::ExtException& e) {
        EXPECT_STREQ(e.what(), "nq_malloc");
    }
}

TEST(Math, RowVectorConventionPutsTranslationLast) {
    nq::Matrixd t = nq::translateMatrix({1, 2, 3});
    nq::Matrixd s = nq::scaleMatrix({2, 2, 2});
    nq::Vec3d p{1, 1, 1};
    // Scale first, then translate: p x S x T.
    nq::Vec3d r = (s * t).transformPoint(p);
    EXPECT_EQ(r, (nq::Vec3d{3, 4, 5}));
    EXPECT_TRUE(((s * t) * (s * t).inverse()).isIdentity(1e-12));
    EXPECT_EQ(t.transformVector(p), p);
}

}  // namespace
