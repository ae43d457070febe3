// The error trap: what it shows, and when it lets go of what an operation had opened.
// SPDX-License-Identifier: MIT
#include "component/operation_connection.h"
#include "tests/support/operation_test.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;

class operation_context : public OperationTest {
 protected:
  operation_context() {
    platform().messageBox = [this](const std::string& text, int, const std::string&) {
      events.push_back("box " + text.substr(0, text.find('\r')));
      return 1;
    };
  }
  // Something that says when it is closed.
  OpenedByOperation<std::string> opened(const std::string& name) {
    return {context, std::shared_ptr<std::string>(new std::string(name), [this](std::string* text) {
              events.push_back("close " + *text);
              delete text;
            })};
  }
};

TEST_F(operation_context, closes_after_the_box_and_in_order_where_an_error_ends_the_operation) {
  const bool done = context.trap("Error in A", [&] {
    const auto connection = opened("connection");
    const auto rows = opened("rows");
    throw refused;
  });
  EXPECT_FALSE(done);
  EXPECT_THAT(events, ElementsAre("box Error in A", "close rows", "close connection"));
}

TEST_F(operation_context, closes_at_the_end_of_the_scope_where_nothing_fails) {
  const bool done = context.trap("Error in A", [&] {
    { const auto rows = opened("rows"); }
    events.emplace_back("more");
    const auto connection = opened("connection");
  });
  EXPECT_TRUE(done);
  EXPECT_THAT(events, ElementsAre("close rows", "more", "close connection"));
}

TEST_F(operation_context, inner_failure_leaves_the_outer_operations_things_open) {
  context.trap("Error in A", [&] {
    const auto connection = opened("connection");
    context.trap("Error in B", [&] {
      const auto rows = opened("rows");
      throw refused;
    });
    events.emplace_back("goes on");
    throw refused;
  });
  EXPECT_THAT(events, ElementsAre("box Error in B", "close rows", "goes on", "box Error in A",
                                  "close connection"));
}

TEST_F(operation_context, operation_while_another_one_unwinds_closes_at_its_own_end) {
  struct AtEnd {
    std::function<void()> run;
    ~AtEnd() { run(); }
  };
  context.trap("Error in A", [&] {
    const AtEnd atEnd{[&] {
      context.trap("Error in B", [&] { const auto rows = opened("rows"); });
      events.emplace_back("unwound");
    }};
    throw refused;
  });
  EXPECT_THAT(events, ElementsAre("close rows", "unwound", "box Error in A"));
}

}  // namespace
}  // namespace pelmora::test
