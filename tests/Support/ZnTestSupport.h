//===- ZnTestSupport.h - Shared helpers for the test suite -----------------===//
#pragma once
#include <gtest/gtest.h>
#include <string>
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnString.h"

/// The assertion handler the test main installs: ends the process with 255.
int EndAfterAssertionForTests(Zn::String* theMessage);

namespace ZnTest {

/// The string's units as UTF-8 (enough for test comparisons).
std::string Utf8(const Zn::String* theString);

/// Fixture that fails a test which leaves objects alive that it created.
class LeakCheckedTest : public testing::Test {
protected:
  void SetUp() override { liveAtStart_ = Zn::Object::getLiveObjectCount(); }
  void TearDown() override { EXPECT_EQ(Zn::Object::getLiveObjectCount(), liveAtStart_) << "objects leaked"; }

private:
  ZnIndex liveAtStart_ = 0;
};
} // namespace ZnTest
