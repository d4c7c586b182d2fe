// One section of what the instrument stores, without a simulator around it, and the calls the library makes to it.
#ifndef QXTEST_UNIT_INSTRUMENT_STORED_SECTION_TEST_H
#define QXTEST_UNIT_INSTRUMENT_STORED_SECTION_TEST_H

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "common/calls/calls.h"
#include "instrument/stored_sections.h"

namespace qxtest {

class StoredSectionTest : public testing::Test {
 protected:
  using StateJson = host::instrument::Json;

  explicit StoredSectionTest(std::unique_ptr<host::instrument::StateSection> section) : section_(std::move(section)) {
    state_.Add(section_.get());
    state_.Reset();
    host::EnableCallLog(true);
    host::CallsSince(0, &first_call_);
  }
  ~StoredSectionTest() override {
    host::EnableCallLog(false);
    host::ClearFaults();
    section_->SetKeeper([](const StateJson&) { return 0; });
    state_.Reset();
  }

  StateJson Now() const { return section_->ToJson(); }
  /// The section after a patch of it.
  StateJson Patched(const std::string& patch) {
    state_.Patch({{section_->Name(), StateJson::parse(patch)}});
    return Now();
  }
  void ExpectRefused(const std::string& patch) {
    const std::string before = Now().dump();
    EXPECT_THROW(Patched(patch), host::instrument::StateError) << patch;
    EXPECT_EQ(Now().dump(), before) << patch;
  }
  /// The calls so far as `61 (9, "01") = 0`.
  std::vector<std::string> Calls() const {
    std::vector<std::string> texts;
    for (const host::CallRecord& call : host::CallsSince(first_call_, nullptr)) {
      std::string arguments;
      for (const auto& argument : call.args) arguments += (arguments.empty() ? "" : ", ") + Text(argument);
      texts.push_back(call.library + " " + Text(call.call) + " (" + arguments + ") = " + Text(call.result));
    }
    return texts;
  }
  void LetNothingBeKept() {
    section_->SetKeeper([](const StateJson&) { return ENOSPC; });
  }

  std::unique_ptr<host::instrument::StateSection> section_;
  host::instrument::State state_;

 private:
  static std::string Text(const host::CallValue& value) {
    return std::visit([](const auto& any) { return StateJson(any).dump(); }, value);
  }

  std::uint64_t first_call_ = 0;
};

}  // namespace qxtest

#endif
