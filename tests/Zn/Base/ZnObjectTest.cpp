//===- ZnObjectTest.cpp - Reference counts, assertions, exceptions ---------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnException.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/IO/ZnWriter.h"
#include <cstring>

using namespace Zn;

namespace {
int sDestroyed = 0;

class Probe : public Object {
public:
  const char* className() const override { return "Array"; }
  const char* superclassName() const override { return "Zn::Object"; }

protected:
  ~Probe() override { ++sDestroyed; }
};

// Keeps its memory after destruction so that a late retain can be observed.
class Lingering : public Probe {
public:
  static void* operator new(Sys::size_t theSize) { return Allocate(theSize); }
  static void operator delete(void*) {}
};

// Retains an object after its destructor ran (its memory is kept); the
// sanitizer's type check would stop at the dead object before our own check.
__attribute__((no_sanitize("vptr"))) void RetainAfterDeath(Probe* theProbe) { theProbe->retain(); }

class ObjectTest : public ZnTest::LeakCheckedTest {};
} // namespace

TEST_F(ObjectTest, CountStartsAtOneAndLastReleaseDestroysOnce) {
  sDestroyed = 0;
  auto a = adopt(new Probe());
  {
    Ref<Probe> b = a;
    Ref<Probe> c = std::move(b);
    EXPECT_EQ(a->getRetainCount(), 2);
  }
  Probe* raw = retained(a.get()).leak();
  EXPECT_EQ(raw->getRetainCount(), 2);
  raw->release();
  a = nullptr;
  EXPECT_EQ(sDestroyed, 1);
}

TEST_F(ObjectTest, ReferencesTakenAndDroppedManyAtOnceCountAsSingleOnes) {
  sDestroyed = 0;
  Probe* probe = new Probe();
  probe->retainMany(5);
  probe->releaseMany(0);
  EXPECT_EQ(probe->getRetainCount(), 6);
  probe->releaseMany(4);
  EXPECT_EQ(sDestroyed, 0);
  probe->retain();
  probe->releaseMany(3);
  EXPECT_EQ(sDestroyed, 1);
}

TEST_F(ObjectTest, DefaultDescriptionNamesClassCountAndAddress) {
  auto p = adopt(new Probe());
  auto text = adopt(p->description());
  char expected[64];
  std::snprintf(expected, sizeof expected, "Array(1) @ 0x%lx", (unsigned long)(uintptr_t)p.get());
  EXPECT_EQ(ZnTest::Utf8(text.get()), expected);
}

TEST_F(ObjectTest, EqualAndCompareHandleNulls) {
  auto a = adopt(new String("a"));
  auto p = adopt(new Probe());
  EXPECT_TRUE(Equal(nullptr, nullptr));
  EXPECT_FALSE(Equal(a.get(), nullptr));
  EXPECT_EQ(Compare(nullptr, nullptr), 0);
  EXPECT_EQ(Compare(p.get(), nullptr), 1);
  EXPECT_EQ(Compare(nullptr, p.get()), -1);
  EXPECT_LT(Compare(a.get(), adopt(new String("b")).get()), 0);
  // The default ordering compares descriptions; the default equality is identity.
  auto q = adopt(new Probe());
  EXPECT_FALSE(p->isEqual(q.get()));
  EXPECT_NE(Compare(p.get(), q.get()), 0);
  EXPECT_EQ(p->hash(), HashMemory("Array", 5));
}

TEST_F(ObjectTest, ExceptionMessageIsCutAt2046Characters) {
  std::string longText(3000, 'x');
  auto e = adopt(new Exception("Sources/Zn/Base/ZnFoo.cpp", 12, "%s", longText.c_str()));
  EXPECT_EQ(std::strlen(e->getMessage()), 2046u);
  auto small = adopt(new Exception("f.cpp", 7, "bad %d", 3));
  auto text = adopt(small->description());
  EXPECT_EQ(ZnTest::Utf8(text.get()), "Exception \"bad 3\" at f.cpp:7");
}

using ObjectDeathTest = ObjectTest;

TEST_F(ObjectDeathTest, RetainOfDeadObjectIsReported) {
  EXPECT_EXIT(
      {
        Probe* p = new Lingering();
        p->release();
        RetainAfterDeath(p);
      },
      testing::ExitedWithCode(255), "Assertion \"refCount_ != 0\" failed with code ZnObject.cpp:[0-9]+:0");
}

TEST_F(ObjectDeathTest, AssertionReportFormatWithAndWithoutContextOrHandler) {
  EXPECT_EXIT(ReportAssertion("theString != NULL", 0, "/a/b/Sources/Zn/Base/ZnMemory.cpp", 365),
              testing::ExitedWithCode(255),
              "^[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}: Assertion \"theString != NULL\" failed "
              "with code ZnMemory.cpp:365:0\n$");
  EXPECT_EXIT(
      {
        auto context = adopt(StringWithFormat("Error while processing file %@:\n\n", adopt(new String("x.nb")).get()));
        SetAssertionContext(context.get());
        ZnAssert(1 + 1 == 3, 42);
      },
      testing::ExitedWithCode(255), "Error while processing file x.nb:\n\nAssertion \"1 \\+ 1 == 3\" failed with code ZnObjectTest.cpp:[0-9]+:42");
  // Without a handler the process exits with -1.
  EXPECT_EXIT(
      {
        SetAssertionHandler(nullptr);
        ReportAssertion("x", 0, "f", 1);
      },
      testing::ExitedWithCode(255), "Assertion \"x\" failed with code f:1:0");
}

namespace {
int sHandlerCalls = 0;
int ContinueAfterAssertion(String*) { return ++sHandlerCalls; }
} // namespace

TEST_F(ObjectTest, HandlerReturningNonZeroLetsExecutionContinue) {
  SetAssertionHandler(ContinueAfterAssertion);
  testing::internal::CaptureStderr();
  ZnAssert(false, 0);
  std::string logged = testing::internal::GetCapturedStderr();
  SetAssertionHandler(EndAfterAssertionForTests);
  EXPECT_EQ(sHandlerCalls, 1);
  EXPECT_NE(logged.find("Assertion \"false\" failed with code ZnObjectTest.cpp:"), std::string::npos);
}
