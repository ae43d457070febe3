// SPDX-License-Identifier: MIT
#include "tests/component/component_fixture.h"

namespace pelmora {
namespace {

class object_lifecycle : public ComponentFixture {};

TEST_F(object_lifecycle, fresh_object_has_its_defaults) {
  const RawData fresh;
  EXPECT_EQ(fresh.DataFitResultDetails, "");
  EXPECT_EQ(fresh.NumberOfFittedPoints, 40);
  EXPECT_EQ(fresh.ExternalID, "");
  EXPECT_FALSE(fresh.Unattended);
  EXPECT_FALSE(fresh.RatioCurve);
  EXPECT_FALSE(fresh.IgnoreResiduals);
  EXPECT_EQ(fresh.BandPercent(), 0.0F);
}

TEST_F(object_lifecycle, fresh_object_points_at_the_default_database) {
  const DatabaseLocation location = RawData().dbDir();
  EXPECT_EQ(location.FullPath, "c:\\program files\\quorvane\\Pelmora.mdb");
  EXPECT_EQ(location.Folder, "c:\\program files\\quorvane\\");
  EXPECT_EQ(location.FileName, "Pelmora.mdb");
  EXPECT_EQ(location.Drive, "c:");
  EXPECT_EQ(location.Extension, ".mdb");
}

TEST_F(object_lifecycle, all_objects_share_the_location) {
  RawData other;
  const DatabaseLocation set = data_->dbDirSetByString("d:\\curves.db");
  EXPECT_EQ(set.FullPath, "d:\\curves.db");
  EXPECT_EQ(other.dbDir(), set);
}

TEST_F(object_lifecycle, location_is_taken_unchecked_field_by_field) {
  const DatabaseLocation odd{"a", "b", "c", "d", "e"};
  data_->dbDir(odd);
  EXPECT_EQ(data_->dbDir(), odd);
}

TEST_F(object_lifecycle, further_object_resets_the_location) {
  data_->dbDirSetByString("d:\\curves.db");
  const RawData other;
  EXPECT_EQ(data_->dbDir().FileName, "Pelmora.mdb");
}

TEST_F(object_lifecycle, further_object_discards_the_last_results) {
  haveFit();
  ASSERT_EQ(fit().size(), 3U);
  ASSERT_EQ(data_->LastFittedArray().size(), 3U);
  const RawData other;
  EXPECT_EQ(data_->LastFittedArray(), PointArray());
  EXPECT_EQ(data_->LastMergedArray(), PointArray());
}

TEST_F(object_lifecycle, destroyed_object_leaves_location_and_results) {
  haveFit();
  RawData other;
  fit();
  data_->dbDirSetByString("d:\\curves.db");
  data_.reset();
  EXPECT_EQ(other.LastFittedArray().size(), 3U);
  EXPECT_EQ(other.dbDir().FullPath, "d:\\curves.db");
}

TEST_F(object_lifecycle, fields_belong_to_one_object) {
  RawData other;
  data_->ExternalID = "stand 3";
  data_->BandPercent(1.5F);
  EXPECT_EQ(other.ExternalID, "");
  EXPECT_EQ(other.BandPercent(), 0.0F);
  EXPECT_EQ(data_->BandPercent(), 1.5F);
}

TEST_F(object_lifecycle, operations_open_the_location_and_close_it) {
  data_->dbDirSetByString("d:\\curves.db");
  data_->findMeterInfo("4711");
  EXPECT_EQ(locations_, std::vector<std::string>{"d:\\curves.db"});
  EXPECT_TRUE(isClosed());
}

TEST_F(object_lifecycle, path_is_the_component_folder_without_a_closing_separator) {
  platform().componentFolder = "/opt/pelmora/";
  EXPECT_EQ(data_->Path(), "/opt/pelmora");
  platform().componentFolder = "c:\\pelmora\\";
  EXPECT_EQ(data_->Path(), "c:\\pelmora");
  platform().componentFolder = "/opt/pelmora";
  EXPECT_EQ(data_->Path(), "/opt/pelmora");
}

TEST_F(object_lifecycle, fitting_object_is_released_after_each_fit) {
  haveFit();
  fit();
  EXPECT_EQ(engine_.modelsAlive, 0);
  EXPECT_EQ(engine_.enginesAlive, 0);
}

}  // namespace
}  // namespace pelmora
