#include <gtest/gtest.h>

#include <functional>

#include "host/automation.h"
#include "sim/memory_file_system.h"
#include "recorder.h"

namespace tavlet::sim {
namespace {

long EditorDbmod(SimHost& host) {
  port::Value v;
  EXPECT_EQ(host.EditorService()->GetVariable("DBMOD", &v, nullptr), port::kOk);
  EXPECT_EQ(v.type, port::kValueShort);
  return v.integer;
}

TEST(SimDbmod, CountsChangesAndFallsToZeroOnlyOnASave) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\a.tdd", Description("C:\\a.dwg", "dbmod 3\n"));
  SimHost host(fs);
  port::Document a = host.OpenDrawing("C:\\a.tdd");
  ASSERT_NE(a, nullptr);
  struct Step {
    const char* what;
    std::function<void()> act;
    long dbmod;
    bool modified;
  };
  const std::vector<Step> steps = {
      {"opened with a change of its own", [] {}, 3, true},
      {"popDbmod after the open", [&] { host.Documents()->PopDbmod(a); }, 0, false},
      {"a drawing command", [&] { host.RunCommand("LINE"); }, 1, true},
      {"a second one", [&] { host.RunCommand("MOVE"); }, 2, true},
      {"a zoom changes nothing", [&] { host.RunCommand("ZOOM", true, "E"); }, 2, true},
      {"a command that changes nothing", [&] { host.RunCommand("ID", false); }, 2, true},
      {"a cancelled command", [&] { host.CancelCommand("ERASE"); }, 2, true},
      {"QSAVE", [&] { host.RunCommand("QSAVE"); }, 0, false},
      {"a change after the save", [&] { host.RunCommand("LINE"); }, 1, true},
      {"SAVEAS", [&] { host.RunCommand("SAVEAS", true, "C:\\b.dwg"); }, 0, false},
  };
  host::ScopedSession session(&host);
  port::Database db = nullptr;
  host.Documents()->DatabaseOf(a, &db);
  host::AcadDocumentPtr doc = host::DocumentObjectOf(host, db);
  for (const Step& s : steps) {
    SCOPED_TRACE(s.what);
    s.act();
    EXPECT_EQ(EditorDbmod(host), s.dbmod);
    EXPECT_EQ(doc.GetVariableShort("DBMOD"), s.dbmod);
    bool modified = false;
    host.Documents()->IsModified(a, &modified);
    EXPECT_EQ(modified, s.modified);
  }
}

TEST(SimFaults, HitExactlyTheCallAndOccurrenceAsked) {
  struct Case {
    const char* call;
    int occurrence;
    std::vector<bool> failsAt;  // for four calls in a row
  };
  const std::vector<Case> cases = {
      {"AcadDocuments::Item", 1, {true, false, false, false}},
      {"AcadDocuments::Item", 3, {false, false, true, false}},
      {"AcadDocuments::Item", 0, {true, true, true, true}},
      {"AcadDocuments::Count", 2, {false, false, false, false}},  // another call: Item is never hit
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.call) + " #" + std::to_string(c.occurrence));
    SimHost host;
    host.OpenDescription(Description("C:\\a.dwg"), "a.tdd");
    host::ScopedSession session(&host);
    host::AcadDocumentsPtr documents = host::GetAcadApplication(host).Documents();
    host.Faults().Fail(c.call, c.occurrence, port::kCallRejected, "busy");
    for (std::size_t i = 0; i < c.failsAt.size(); ++i) {
      try {
        host::AcadDocumentPtr d = documents.Item(0);
        EXPECT_FALSE(c.failsAt[i]) << "call " << i + 1;
        EXPECT_EQ(d.FullName(), "C:\\a.dwg");
      } catch (const host::ComError& e) {
        EXPECT_TRUE(c.failsAt[i]) << "call " << i + 1;
        EXPECT_EQ(e.Bits(), 0x80010001u);
        EXPECT_EQ(e.Description(), "busy");
      }
    }
    EXPECT_EQ(host.Faults().Count("AcadDocuments::Item"), 4);
  }
}

TEST(SimFaults, EditorAndManagerCallsFailWithTheirResultAndLeaveStateAlone) {
  SimHost host;
  port::Document a = host.OpenDescription(Description("C:\\a.dwg"), "a.tdd");
  host.Faults().Fail("DocManager::ActivateDocument", 1, port::kFail, "refused");
  port::Document b = host.OpenDescription(Description("C:\\b.dwg"), "b.tdd");
  EXPECT_EQ(host.Documents()->ActivateDocument(a, false), port::kFail);
  host::StringSink description;
  host.LastErrorDescription(&description);
  EXPECT_EQ(description.text, "refused");
  EXPECT_EQ(host.MdiActive(), b);
  EXPECT_EQ(host.Documents()->ActivateDocument(a, false), port::kOk);
  EXPECT_EQ(host.MdiActive(), a);
}

TEST(SimFaults, AMissingApplicationIsNullAndOtherFailuresRaise) {
  SimHost host;
  host::ScopedSession session(&host);
  host.SetApplicationMissing(true);
  EXPECT_FALSE(host::GetAcadApplication(host));
  host.SetApplicationMissing(false);
  host.Faults().Fail("HostSession::Application", 1, port::kOutOfMemory, "no memory");
  EXPECT_THROW(host::GetAcadApplication(host), host::ComError);
  host::AcadApplicationPtr app = host::GetAcadApplication(host);
  ASSERT_TRUE(app);
  // A call through a null wrapper raises E_POINTER, as the real smart pointers do.
  try {
    host::AcadDocumentPtr().Activate();
    ADD_FAILURE() << "no error";
  } catch (const host::ComError& e) {
    EXPECT_EQ(e.Bits(), 0x80004003u);
  }
}

}  // namespace
}  // namespace tavlet::sim
