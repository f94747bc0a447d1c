// The object model as JScript sees it: ObjectModel.js table.csv
// Prints what fails and, last, how many checks were made.
var checks = 0, failures = 0;

function check(what, actual, expected) {
  ++checks;
  if (actual === expected) return;
  ++failures;
  WScript.Echo("FAILED " + what + ": " + actual + " instead of " + expected);
}

// The number of the error that `action` throws, and its text; "none" when it throws none.
function failure(action) {
  try {
    action();
    return "none";
  } catch (error) {
    return (error.number & 0xFFFF) + " " + error.description;
  }
}

try {
  var app = new ActiveXObject("vtrlk_workbench.Application");
  app.Workbooks.Open(WScript.Arguments(0));
  var sheet = app.ActiveSheet;
  var runtime = new ActiveXObject("vtrlk_runtime.clsVTRLKRuntime");
  runtime.ExcelApp = app;  // a plain assignment: JScript has no other
  runtime.SearchOptions.UseFilter = true;
  runtime.SearchOptions.CompareMethod = 1;
  check("search", runtime.Search("GERMANY"), true);
  check("a row without a match", sheet.Range("A1").EntireRow.Hidden, true);

  var items = runtime.Items;
  check("identity", items === runtime.Items, true);
  var profile = items.DefaultItem.Clone("C:\\Data\\Sales.xls");
  check("add", items.Add(profile), true);
  check("the same profile", items.ByName("sales.xls") === profile, true);
  check("no profile", items.ByName("other"), null);
  profile.StartRow = 3;
  check("a number", items.Item(0).StartRow + 1, 4);
  check("numbers from texts", (profile.StartRow = "5", profile.StartRow), 5);

  check("no number", failure(function () { profile.StartRow = "five"; }) !== "none", true);
  check("unknown", failure(function () { runtime.NoSuchMember(); }).split(" ")[0], "438");
  runtime.ExcelApp = null;
  check("a host that was released", runtime.Search("germany"), false);
} catch (error) {
  ++failures;
  WScript.Echo("FAILED with " + error.number + " " + error.description);
}
WScript.Echo(checks + " checks, " + failures + " failures");
WScript.Quit(checks === 11 && failures === 0 ? 0 : 1);
