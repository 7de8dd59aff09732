// Objects that save themselves in their destructors, when the thread or the process ends. By then, the data that the
// library remembers is destroyed, or was never created.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "dynamic_class.h"
#include "scoped_locale.h"

namespace Quillon9 {
namespace {

using namespace Testing;
using Quillon9Data::CElementInfoSeqPrimMnd;

CPrimitiveRestrictions AtLeast(char const* bound) { return CPrimitiveRestrictions("", -1, -1, bound, "", "", "", -1); }

CPrimitiveRestrictions Like(char const* pattern) { return CPrimitiveRestrictions(pattern, -1, -1, "", "", "", "", -1); }

constexpr char kDocument[] =
    R"(<settings xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><name>Größe</name><since>2001-02-03</since>)"
    "<factor>1.25</factor><count>12345678901234567890</count><every>P2D</every><rate>0.5</rate></settings>";

/// Writes itself to `path` in both forms during its destruction, and checks what it reads back from them.
class Settings {
 public:
  explicit Settings(char const* path) : m_path(path) {}
  ~Settings() {
    try {
      Save();
    } catch (CQnException const& failure) {
      std::fprintf(stderr, "%s\n", failure.GetFullMessage().c_str());
      std::_Exit(3);
    }
  }

 private:
  void Save() {
    Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("name", 0, ItemType_string, Like(".+")),
                           Prim<CElementInfoSeqPrimMnd>("since", 1, ItemType_date, AtLeast("2000-01-01")),
                           Prim<CElementInfoSeqPrimMnd>("factor", 2, ItemType_decimal, AtLeast("0.5")),
                           Prim<CElementInfoSeqPrimMnd>("count", 3, ItemType_integer, AtLeast("1")),
                           Prim<CElementInfoSeqPrimMnd>("every", 4, ItemType_duration, AtLeast("P1D")),
                           Prim<CElementInfoSeqPrimMnd>("rate", 5, ItemType_r8, AtLeast("0"))});
    DynamicClass settings(shape, "settings");
    settings.FromXml(kDocument);
    settings.ToXmlFile(m_path.c_str());
    settings.FromXmlFile(m_path.c_str());
    settings.ToFastInfosetFile((m_path + ".finf").c_str());
    DynamicClass copy(shape, "settings");
    copy.FromXmlFile((m_path + ".finf").c_str());
    if (copy.Text() != settings.Text()) std::_Exit(4);
    std::ofstream(m_path) << copy.Text();
  }

  std::string m_path;
};

std::string Content(std::string const& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void SaveWhenTheProcessEnds(char const* path) { static Settings const settings(path); }
void SaveWhenTheThreadEnds(char const* path) { static thread_local Settings const settings(path); }

/// Creates the library's own data of the thread after the object, so that it is destroyed before it.
void UseAll() {
  CXmlObjectHelper::CheckRestrictionForstring("a", "a", Like("a"));
  CXmlObjectHelper::CheckRestrictionFordate("a", CDateTime(2001, 1, 1), AtLeast("2000-01-01"));
  CXmlObjectHelper::CheckRestrictionFordecimal("a", CDecimal("1"), AtLeast("0"));
  CXmlObjectHelper::CheckRestrictionForduration("a", CDateTimeSpan(48, 0, 0), AtLeast("P1D"));
  CXmlDocument().LoadXml("<a/>");
}

class LateUse : public testing::Test {
 protected:
  // The child starts like a new program: no other test has made the library remember anything.
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  void TearDown() override {
    EXPECT_EQ(kExpected, Content(m_path));
    EXPECT_LT(0U, Content(m_path + ".finf").size());
    std::remove(m_path.c_str());
    std::remove((m_path + ".finf").c_str());
  }

  std::string const kExpected =
      "<settings><name>Größe</name><since>2001-02-03</since><factor>1.25</factor><count>12345678901234567890</count>"
      "<every>P2D</every><rate>0.5</rate></settings>";
  std::string m_path = testing::TempDir() + "late_use_" + testing::UnitTest::GetInstance()->current_test_info()->name();
  ScopedLocale m_locale{"C.UTF-8"};
};

TEST_F(LateUse, StaticObjectOfAProcessThatUsedTheLibrary) {
  auto const child = [this] {
    SaveWhenTheProcessEnds(m_path.c_str());
    UseAll();
    std::exit(0);
  };
  EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

TEST_F(LateUse, StaticObjectOfAProcessThatDidNot) {
  auto const child = [this] {
    SaveWhenTheProcessEnds(m_path.c_str());
    std::exit(0);
  };
  EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

TEST_F(LateUse, DataOfTheFirstThread) {
  auto const child = [this] {
    SaveWhenTheThreadEnds(m_path.c_str());
    UseAll();
    std::exit(0);
  };
  EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

TEST_F(LateUse, DataOfAnotherThread) {
  std::thread([this] {
    SaveWhenTheThreadEnds(m_path.c_str());
    UseAll();
  }).join();
}

/// Created before all other objects of this program, and destroyed after them. Tests the library's own static objects.
[[gnu::init_priority(150)]] struct Earliest {
  ~Earliest() {
    if (path == nullptr) return;
    Settings const settings(path);
    if (CBigInteger::MAX_LONG.ToString() != "2147483647" || CBigInteger::MAX_DOUBLE < CBigInteger::MAX_LONGLONG) {
      std::_Exit(5);
    }
  }
  char const* path = nullptr;
} g_earliest;

TEST_F(LateUse, ObjectThatIsMadeBeforeAllOthers) {
  auto const child = [this] {
    g_earliest.path = m_path.c_str();
    UseAll();
    std::exit(0);
  };
  EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace Quillon9
