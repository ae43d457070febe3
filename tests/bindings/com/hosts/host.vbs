' Does the main job as a script: cscript //nologo host.vbs CURVES.db
' Scripts cannot look into arrays of doubles or records; what they can read is the report.
' SPDX-License-Identifier: MIT
Option Explicit

Dim numbers, table(23, 1), i
numbers = Array( _
  10.1159788861, 1201.12217732, 16.3153855254, 1260.8803125, 25.0777648629, 1290.35841452, _
  38.7617592379, 1303.96887287, 59.0447683663, 1309.98836561, 89.5623681341, 1311.57926099, _
  138.222795633, 1313.0916747, 206.879332439, 1314.40483165, 321.61605828, 1315.43451647, _
  486.893440799, 1316.19045259, 732.061119116, 1317.35067419, 1101.57125399, 1317.88685975, _
  1114.53215956, 1317.92968118, 730.533877377, 1317.34174097, 479.652457304, 1316.58577223, _
  314.724852366, 1315.71580977, 209.039892462, 1314.3687006, 137.49854559, 1312.92552237, _
  89.5803052064, 1311.59809046, 59.7795051798, 1309.86638735, 38.8473171096, 1304.52061827, _
  25.11500177, 1290.29973404, 16.0034589764, 1260.15660459, 10.184198657, 1202.24470831)
For i = 0 To 23
  table(i, 0) = numbers(2 * i)
  table(i, 1) = numbers(2 * i + 1)
Next

Dim data, isEmpty, low, high, fitted, meters
Set data = CreateObject("Pelmora.RawData")
data.dbDirSetByString WScript.Arguments(0)
data.Unattended = True
data.BandPercent = 1
WScript.Echo "meter id " & data.setMeterSN("TF-1001")
WScript.Echo "raw stored " & data.SetRaw("Rotor A", "TF-1001", table, 0, False)
isEmpty = True
low = 12
high = 1000
fitted = data.determineFittedCurve("Rotor A", "TF-1001", isEmpty, low, high, "Roshko", "Strouhal", False)
WScript.Echo "fit empty " & isEmpty & ", array " & IsArray(fitted)
WScript.Echo "range " & low & " " & high
WScript.Echo "fit stored " & data.SetLastFitted(False)
meters = data.Meters(isEmpty)
WScript.Echo "meters empty " & isEmpty & ", array " & IsArray(meters)
On Error Resume Next
data.SetRaw "Rotor A", "TF-1001", "no array", 0, False
WScript.Echo "wrong argument " & (Err.Number <> 0)
On Error GoTo 0
WScript.Echo "report"
WScript.Echo data.DataFitResultDetails
WScript.Echo "done"
