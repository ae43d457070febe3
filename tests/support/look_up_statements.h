// The statements with which operations look for rows and delete them: each has to find its rows by
// an index, however many others there are. SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::test {

inline const std::vector<std::string>& lookUpStatements() {
  static const std::vector<std::string> statements{
      "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='a' ORDER "
      "BY ReCalID DESC",
      "SELECT ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='a' AND "
      "recalid=1 ORDER BY ReCalID DESC",
      "Select SerialNumberAdjusted, recalid from meter where SerialNumber = 'a' order by "
      "recalid desc",
      "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='a' ORDER BY ReCalID "
      "DESC",
      "SELECT TOP 1 series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted "
      "from series "
      "left join meter on series.meterid=meter.id where serialnumber='a' AND series.name = 'b' "
      "ORDER BY "
      "ReCalID DESC",
      "Select distinct serialnumber, name from meter left join series on "
      "meter.id=series.meterid  where "
      "serialnumber = 'a' and recalid =1",
      "DELETE Series.* from series where id=1",
      "select * from series where name = 'b' and meterid=1",
      "SELECT TOP 1 series.*, meter.recalid, meter.serialnumberadjusted from series left join "
      "meter on "
      "series.meterid=meter.id where series.name = 'b' and meter.serialnumber='a' ORDER BY "
      "meter.recalid DESC",
      "SELECT series.*, meter.recalid, meter.serialnumberadjusted from series left join meter "
      "on "
      "series.meterid=meter.id where series.name = 'b' and meter.serialnumber='a' and "
      "meter.recalid=2",
      "Select roshko, strouhal from raw1 where seriesID = 1",
      "Select roshko, strouhal from raw4 where seriesID = 1 ORDER BY Roshko ASC",
      "Select * from raw2 where seriesID=1",
      "DELETE from raw3 where seriesID = 1",
      "Select * from merge where seriesid = 1",
      "DELETE from merge where seriesid = 1",
      "Select * from curve where seriesID = 1",
      "DELETE from curve where seriesID = 1",
      "Select summary from datafitresults where seriesID = 1",
      "DELETE from DataFitResults where seriesID = 1",
      "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = CalSetup.FluidID WHERE "
      "(((Fluids.Name)='a') AND ((CalSetup.MeterID)=1));",
      "Select * from fluids where name = 'a'",
      "Select * from Operator where name = 'a'",
      "Select ID from CalSetup where meterID=1 ORDER BY stand, ID ASC",
      "Delete * from CalDataPoint where CalDataPoint.calsetupid=1",
      "Select DISTINCT JobRecordID from CalDataPoint where CalSetupID=1 ORDER BY JobRecordID "
      "ASC",
      "Select v2,v3,v4,v5,v12 from CalDataPoint WHERE (((CalDataPoint.calSetupID)=1 and "
      "CalDataPoint.JobRecordID=2));",
      "INSERT INTO raw1 ( seriesID,   Roshko,   Strouhal ) SELECT 5 AS SeriesID, [v4]/[v3] AS "
      "Roshko, "
      "[v2]/[v1] AS Strouhal FROM CalDataPoint WHERE (((CalDataPoint.calSetupID)=1));",
      "SELECT TOP 1 CalDatapoint.JobRecordID FROM (Meter LEFT JOIN CalSetup ON Meter.ID = "
      "CalSetup.MeterID) LEFT JOIN CalDatapoint ON CalSetup.ID = CalDatapoint.CalSetupID WHERE "
      "Meter.SerialNumber='a'  ORDER BY ReCalID DESC",
  };
  return statements;
}

}  // namespace pelmora::test
