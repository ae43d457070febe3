// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/run_list.h"

#include "apps/pelmora/trouble.h"

#include <gmock/gmock.h>

namespace pelmora::cli {
namespace {

using testing::HasSubstr;
using Texts = std::vector<std::string>;

std::string refusal(const Texts& jobs, const Texts& fluids, const Texts& operators) {
  try {
    (void)listedRuns(jobs, fluids, operators);
  } catch (const Trouble& trouble) {
    EXPECT_EQ(trouble.code(), ExitCode::usage);
    return errorLine(trouble);
  }
  ADD_FAILURE() << "accepted";
  return {};
}

TEST(run_list, join_the_repeated_options_in_order) {
  const auto runs = listedRuns({"1001", "1003:1004"}, {"oil", "water"}, {"Ada", "Bob"});
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0].run.job, "1001");
  EXPECT_EQ(runs[0].secondJob, "");
  EXPECT_EQ(runs[1].run.job, "1003");
  EXPECT_EQ(runs[1].secondJob, "1004");
  EXPECT_EQ(runs[1].run.fluid, "water");
  EXPECT_EQ(runs[1].run.operatorName, "Bob");
}

TEST(run_list, may_share_one_operator_or_have_none) {
  EXPECT_EQ(listedRuns({"1", "2"}, {"a", "b"}, {"Ada"})[1].run.operatorName, "Ada");
  EXPECT_EQ(listedRuns({"1"}, {"a"}, {})[0].run.operatorName, "");
}

TEST(run_list, need_one_fluid_each) {
  EXPECT_THAT(refusal({"1", "2"}, {"a"}, {}), HasSubstr("2 --jobs but 1 --fluid"));
  EXPECT_THAT(refusal({"1", "2", "3"}, {"a", "b", "c"}, {"x", "y"}), HasSubstr("--operator"));
}

TEST(run_list, may_not_replace_each_other) {
  EXPECT_THAT(refusal({"1", "2"}, {"Oil", "oil"}, {}), HasSubstr("appears twice"));
  EXPECT_THAT(refusal({"1", "2"}, {"caf\u00e9", "CAF\u00c9"}, {}), HasSubstr("appears twice"));
}

TEST(run_list, have_whole_numbers_for_jobs) {
  for (const char* job : {"", "x", "1.5", "1:", ":2", "1:2:3", "-1", "1 or 1=1"}) {
    EXPECT_THAT(refusal({job}, {"a"}, {}), HasSubstr("--job")) << job;
  }
}

TEST(run_list, have_names_that_statements_can_carry) {
  EXPECT_THAT(refusal({"1"}, {"o'il"}, {}), HasSubstr("apostrophe"));
  EXPECT_THAT(refusal({"1"}, {"oil"}, {"O'Hara"}), HasSubstr("apostrophe"));
  EXPECT_THAT(refusal({"1"}, {" "}, {}), HasSubstr("empty"));
}

}  // namespace
}  // namespace pelmora::cli
