// RD_REG, WR_REG and DL_REG.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "common/kernel/handles.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

constexpr char kKey[] = "HKLM/Software/X";
constexpr WCHAR kPath[] = u"Software\\X";

/// A value as the platform holds it; the type is REG_NONE when there is none.
struct Value {
  DWORD type = 0;
  std::string bytes;
  bool operator==(const Value& other) const { return type == other.type && bytes == other.bytes; }
};
std::ostream& operator<<(std::ostream& out, const Value& value) {
  return out << value.type << ":" << testing::PrintToString(value.bytes);
}

class RegistryCommands : public testing::Test {
 protected:
  static void Set(const std::u16string& name, DWORD type, const std::string& bytes) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    const auto* data = reinterpret_cast<const BYTE*>(bytes.data());
    EXPECT_EQ(RegSetValueExW(key, name.c_str(), 0, type, data, static_cast<DWORD>(bytes.size())), 0);
    RegCloseKey(key);
  }
  static Value Get(HKEY root, const std::u16string& path, const std::u16string& name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != 0) return {};
    Value value;
    value.bytes.resize(4096);
    DWORD size = 4096;
    if (RegQueryValueExW(key, name.c_str(), nullptr, &value.type, reinterpret_cast<BYTE*>(value.bytes.data()), &size) ==
        0) {
      value.bytes.resize(size);
    } else {
      value = {};
    }
    RegCloseKey(key);
    return value;
  }
  static Value Get(const std::u16string& name) { return Get(HKEY_LOCAL_MACHINE, kPath, name); }
  static bool HasKey(HKEY root, const std::u16string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != 0) return false;
    RegCloseKey(key);
    return true;
  }
  static std::string Bytes(std::u16string_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
  }
  /// A text of the registry, with its terminating zero.
  static std::string Terminated(std::u16string text) {
    return Bytes(std::u16string_view(text.c_str(), text.size() + 1));
  }

  std::string Read(const std::string& name) {
    return service_.Answer(std::string("RD_REG,KEY=") + kKey + ",NAM=" + name);
  }
  std::string Write(const std::string& fields) {
    return service_.Answer(std::string("WR_REG,KEY=") + kKey + "," + fields);
  }

  ControllerService service_;
};

using RD_REG = RegistryCommands;
using WR_REG = RegistryCommands;
using DL_REG = RegistryCommands;

// ---- The key

TEST_F(RegistryCommands, WantAKnownRootAndAPathBehindIt) {
  for (const char* key : {"HKLM", "HKLM/", "hklm/Software", "HKXX/Software", "/Software", "HKLM\\\\Software", "HKLMX/a",
                          " HKLM/a", "HKEY_LOCAL_MACHINE/a"}) {
    const std::string field = std::string(",KEY=") + key;
    EXPECT_EQ(service_.Answer("RD_REG,NAM=a" + field), "ER_PRM") << key;
    EXPECT_EQ(service_.Answer("WR_REG,NAM=a,TYP=INT,VAL=1" + field), "ER_PRM") << key;
    EXPECT_EQ(service_.Answer("DL_REG" + field), "ER_PRM") << key;
  }
}

TEST_F(RegistryCommands, ReachTheFourRoots) {
  const std::vector<std::pair<std::string, HKEY>> roots = {
      {"HKCU", HKEY_CURRENT_USER}, {"HKLM", HKEY_LOCAL_MACHINE}, {"HKCR", HKEY_CLASSES_ROOT}, {"HKU", HKEY_USERS}};
  for (const auto& [name, root] : roots) {
    EXPECT_EQ(service_.Answer("WR_REG,KEY=" + name + "/A/B,NAM=n,TYP=INT,VAL=7"), "ok");
    EXPECT_EQ(Get(root, u"A\\B", u"n"), (Value{REG_DWORD, std::string("\7\0\0\0", 4)}));
    EXPECT_EQ(service_.Answer("RD_REG,KEY=" + name + "/A/B,NAM=n"), "REG,KEY=" + name + "/A/B,NAM=n,TYP=INT,VAL=7");
    EXPECT_EQ(service_.Answer("DL_REG,KEY=" + name + "/A/B"), "ok");
    EXPECT_FALSE(HasKey(root, u"A\\B"));
  }
}

TEST_F(RegistryCommands, TakeABackslashInThePathAsItIs) {
  EXPECT_EQ(service_.Answer("WR_REG,KEY=HKLM/Software\\\\X,NAM=n,TYP=INT,VAL=7"), "ok");
  EXPECT_EQ(Get(u"n").type, DWORD{REG_DWORD});
}

TEST_F(RegistryCommands, LeaveNoKeyOpen) {
  const std::size_t handles = host::LibraryHandles();
  Write("NAM=n,TYP=INT,VAL=7");
  Read("n");
  Read("none");
  service_.Answer("DL_REG,KEY=HKLM/Software/X,NAM=n");
  service_.Answer("DL_REG,KEY=HKLM/Software/X");
  EXPECT_EQ(host::LibraryHandles(), handles);
}

TEST_F(RegistryCommands, AreKeptForToolsMode) {
  MemoryLine line;
  qxcm::CommManager other{u"COM5", line.MakeLink()};
  for (const char* command :
       {"RD_REG,KEY=HKLM/A,NAM=a", "WR_REG,KEY=HKLM/A,NAM=a,TYP=INT,VAL=1", "DL_REG,KEY=HKLM/A"}) {
    EXPECT_EQ(line.Exchange(command), ReplyFrame("ER_CMD") + std::string(kAck));
  }
}

// ---- RD_REG

TEST_F(RD_REG, AnswersANumberAsSigned) {
  Set(u"Level", REG_DWORD, std::string("\3\0\0\0", 4));
  EXPECT_EQ(Read("Level"), "REG,KEY=HKLM/Software/X,NAM=Level,TYP=INT,VAL=3");
  Set(u"Level", REG_DWORD, "\xFE\xFF\xFF\xFF");
  EXPECT_EQ(Read("Level"), "REG,KEY=HKLM/Software/X,NAM=Level,TYP=INT,VAL=-2");
}

TEST_F(RD_REG, AnswersKeyAndNameAsTheyWereSent) {
  Set(u"Level", REG_DWORD, std::string("\3\0\0\0", 4));
  EXPECT_EQ(service_.Answer("RD_REG,NAM=LEVEL,KEY=HKLM/software/x"), "REG,KEY=HKLM/software/x,NAM=LEVEL,TYP=INT,VAL=3");
}

TEST_F(RD_REG, AnswersATextWithoutEscapes) {
  Set(u"Name", REG_SZ, Terminated(u"a,b\\c"));
  EXPECT_EQ(Read("Name"), "REG,KEY=HKLM/Software/X,NAM=Name,TYP=STR,VAL=a,b\\c");
  Set(u"Name", REG_SZ, Terminated(u"\u00E4\u20AC"));
  EXPECT_EQ(Read("Name"), "REG,KEY=HKLM/Software/X,NAM=Name,TYP=STR,VAL=\xE4\x80");
}

TEST_F(RD_REG, AnswersATextWithoutItsTerminatingZeroOrBehindIt) {
  Set(u"Name", REG_SZ, Bytes(u"abc"));
  EXPECT_EQ(Read("Name"), "REG,KEY=HKLM/Software/X,NAM=Name,TYP=STR,VAL=abc");
  Set(u"Name", REG_SZ, Terminated(u"abc") + Terminated(u"def") + "x");
  EXPECT_EQ(Read("Name"), "REG,KEY=HKLM/Software/X,NAM=Name,TYP=STR,VAL=abc");
  Set(u"Name", REG_SZ, "");
  EXPECT_EQ(Read("Name"), "REG,KEY=HKLM/Software/X,NAM=Name,TYP=STR,VAL=");
}

TEST_F(RD_REG, AnswersTextsOfUpTo1024Characters) {
  Set(u"Name", REG_SZ, Terminated(std::u16string(1024, u'x')));
  EXPECT_EQ(Read("Name"), "REG,KEY=HKLM/Software/X,NAM=Name,TYP=STR,VAL=" + std::string(1024, 'x'));
  Set(u"Name", REG_SZ, Terminated(std::u16string(1025, u'x')));
  EXPECT_EQ(Read("Name"), "ER_FAL");
}

TEST_F(RD_REG, AnswersBytesOfUpTo512) {
  Set(u"Raw", REG_BINARY, std::string("\x0A\x1B", 2));
  EXPECT_EQ(Read("Raw"), "REG,KEY=HKLM/Software/X,NAM=Raw,TYP=BIN,VAL=0A1B");
  Set(u"Raw", REG_BINARY, std::string(512, '\xEE'));
  EXPECT_EQ(Read("Raw"), "REG,KEY=HKLM/Software/X,NAM=Raw,TYP=BIN,VAL=" + std::string(1024, 'E'));
  Set(u"Raw", REG_BINARY, std::string(513, '\xEE'));
  EXPECT_EQ(Read("Raw"), "ER_FAL");
  Set(u"Raw", REG_BINARY, "");
  EXPECT_EQ(Read("Raw"), "REG,KEY=HKLM/Software/X,NAM=Raw,TYP=BIN,VAL=");
}

TEST_F(RD_REG, KnowsNoOtherTypes) {
  for (const DWORD type : {0u, 2u, 5u, 7u, 11u}) {
    Set(u"Other", type, std::string(8, '\1'));
    EXPECT_EQ(Read("Other"), "ER_FAL") << type;
  }
}

TEST_F(RD_REG, ReadsTheDefaultValueOfANameWithoutText) {
  Set(u"", REG_DWORD, std::string("\5\0\0\0", 4));
  EXPECT_EQ(service_.Answer("RD_REG,KEY=HKLM/Software/X,NAM"), "REG,KEY=HKLM/Software/X,NAM=,TYP=INT,VAL=5");
}

TEST_F(RD_REG, FailsWithoutTheKeyOrTheValue) {
  EXPECT_EQ(Read("none"), "ER_FAL");
  Set(u"n", REG_DWORD, std::string(4, '\0'));
  EXPECT_EQ(Read("none"), "ER_FAL");
}

TEST_F(RD_REG, WantsKeyAndName) {
  for (const char* command : {"RD_REG", "RD_REG,KEY=HKLM/A", "RD_REG,NAM=a"}) {
    EXPECT_EQ(service_.Answer(command), "ER_PRM") << command;
  }
}

TEST_F(RD_REG, FailsWhereThePlatformDoes) {
  Set(u"n", REG_DWORD, std::string(4, '\0'));
  for (const std::uint64_t nth : {1u, 2u}) {
    const Failing failing("RegQueryValueExW", ERROR_GEN_FAILURE, nth);
    EXPECT_EQ(Read("n"), "ER_FAL") << nth;
  }
}

// ---- WR_REG

TEST_F(WR_REG, WritesANumber) {
  EXPECT_EQ(Write("NAM=n,TYP=INT,VAL=-2"), "ok");
  EXPECT_EQ(Get(u"n"), (Value{REG_DWORD, "\xFE\xFF\xFF\xFF"}));
  EXPECT_EQ(Write("NAM=n,TYP=INT,VAL=x"), "ok");
  EXPECT_EQ(Get(u"n"), (Value{REG_DWORD, std::string(4, '\0')}));
}

TEST_F(WR_REG, WritesATextWithItsTerminatingZero) {
  EXPECT_EQ(Write("NAM=n,TYP=STR,VAL=a\\,b\xE4"), "ok");
  EXPECT_EQ(Get(u"n"), (Value{REG_SZ, Terminated(u"a,b\u00E4")}));
  EXPECT_EQ(Write("NAM=n,TYP=STR,VAL"), "ok");
  EXPECT_EQ(Get(u"n"), (Value{REG_SZ, Terminated(u"")}));
}

TEST_F(WR_REG, WritesBytes) {
  EXPECT_EQ(Write("NAM=n,TYP=BIN,VAL=0a1B"), "ok");
  EXPECT_EQ(Get(u"n"), (Value{REG_BINARY, "\x0A\x1B"}));
  EXPECT_EQ(Write("NAM=n,TYP=BIN,VAL"), "ok");
  EXPECT_EQ(Get(u"n"), (Value{REG_BINARY, ""}));
}

TEST_F(WR_REG, RefusesATextThatIsNoHexadecimal) {
  for (const char* value : {"ABC", "0G"}) EXPECT_EQ(Write(std::string("NAM=n,TYP=BIN,VAL=") + value), "ER_PRM");
  EXPECT_FALSE(HasKey(HKEY_LOCAL_MACHINE, kPath));
}

TEST_F(WR_REG, FailsForOtherTypesAndWritesNothing) {
  for (const char* type : {"DWORD", "int", "STR ", ""}) {
    const std::string field = *type == 0 ? "TYP" : std::string("TYP=") + type;
    EXPECT_EQ(Write("NAM=n,VAL=1," + field), "ER_FAL") << type;
  }
  EXPECT_FALSE(HasKey(HKEY_LOCAL_MACHINE, kPath));
}

TEST_F(WR_REG, MakesTheKey) {
  EXPECT_FALSE(HasKey(HKEY_LOCAL_MACHINE, kPath));
  Write("NAM=n,TYP=INT,VAL=1");
  EXPECT_TRUE(HasKey(HKEY_LOCAL_MACHINE, kPath));
}

TEST_F(WR_REG, ReplacesAValueOfAnotherType) {
  Write("NAM=n,TYP=STR,VAL=text");
  Write("NAM=N,TYP=INT,VAL=1");
  EXPECT_EQ(Get(u"n").type, DWORD{REG_DWORD});
}

TEST_F(WR_REG, TellsTheWindows) {
  TestWindow window;
  service_.manager.notify_list().Register(window.handle(), kNotice);
  Write("NAM=n,TYP=DWORD,VAL=1");
  Write("NAM=n,TYP=INT,VAL=1");
  service_.Answer("ST_HAN,HAN=1");
  const auto seen = window.WaitForSeen(2);
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0], (SeenMessage{kNotice, 2305, 0, false}));
  EXPECT_EQ(seen[1].wparam, 513u);
}

TEST_F(WR_REG, WantsItsFourFields) {
  for (const char* command : {"WR_REG", "WR_REG,NAM=n,TYP=INT,VAL=1", "WR_REG,KEY=HKLM/A,TYP=INT,VAL=1",
                              "WR_REG,KEY=HKLM/A,NAM=n,VAL=1", "WR_REG,KEY=HKLM/A,NAM=n,TYP=INT"}) {
    EXPECT_EQ(service_.Answer(command), "ER_PRM") << command;
  }
  EXPECT_FALSE(HasKey(HKEY_LOCAL_MACHINE, u"A"));
}

TEST_F(WR_REG, LooksAtTheKeyBeforeTheType) {
  EXPECT_EQ(service_.Answer("WR_REG,KEY=HKLM,NAM=n,TYP=DWORD,VAL=1"), "ER_PRM");
}

TEST_F(WR_REG, FailsWhereThePlatformDoes) {
  for (const char* call : {"RegCreateKeyExW", "RegSetValueExW"}) {
    const Failing failing(call, ERROR_DISK_FULL);
    EXPECT_EQ(Write("NAM=n,TYP=INT,VAL=1"), "ER_FAL") << call;
  }
}

// ---- DL_REG

TEST_F(DL_REG, DeletesAValue) {
  Write("NAM=n,TYP=INT,VAL=1");
  Write("NAM=m,TYP=INT,VAL=2");
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/X,NAM=N"), "ok");
  EXPECT_EQ(Get(u"n"), Value());
  EXPECT_EQ(Get(u"m").type, DWORD{REG_DWORD});
}

TEST_F(DL_REG, DeletesAKeyWithAllThatIsUnderIt) {
  Write("NAM=n,TYP=INT,VAL=1");
  service_.Answer("WR_REG,KEY=HKLM/Software/X/Y/Z,NAM=n,TYP=INT,VAL=1");
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/X"), "ok");
  EXPECT_FALSE(HasKey(HKEY_LOCAL_MACHINE, kPath));
  EXPECT_TRUE(HasKey(HKEY_LOCAL_MACHINE, u"Software"));
}

TEST_F(DL_REG, CountsAMissingKeyAsDeleted) {
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/None"), "ok");
  EXPECT_EQ(service_.PlatformCalls({"RegDeleteKeyW"}), Texts{});
}

TEST_F(DL_REG, FailsForAMissingValue) {
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/X,NAM=n"), "ER_FAL");
  Write("NAM=n,TYP=INT,VAL=1");
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/X,NAM=m"), "ER_FAL");
}

TEST_F(DL_REG, DeletesTheDefaultValueForANameWithoutText) {
  Set(u"", REG_DWORD, std::string(4, '\0'));
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/X,NAM"), "ok");
  EXPECT_EQ(Get(u""), Value());
  EXPECT_TRUE(HasKey(HKEY_LOCAL_MACHINE, kPath));
}

TEST_F(DL_REG, WantsItsKey) { EXPECT_EQ(service_.Answer("DL_REG,NAM=n"), "ER_PRM"); }

TEST_F(DL_REG, TellsNoWindow) {
  TestWindow window;
  service_.manager.notify_list().Register(window.handle(), kNotice);
  service_.Answer("DL_REG,KEY=HKLM/Software/None");
  service_.Answer("ST_HAN,HAN=1");
  EXPECT_EQ(window.WaitForSeen(1).front().wparam, 513u);
}

TEST_F(DL_REG, FailsWhereThePlatformDoes) {
  Write("NAM=n,TYP=INT,VAL=1");
  {
    const Failing failing("RegDeleteValueW", ERROR_DISK_FULL);
    EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/X,NAM=n"), "ER_FAL");
  }
  const Failing failing("RegDeleteKeyW", ERROR_DISK_FULL);
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Software/X"), "ER_FAL");
  EXPECT_TRUE(HasKey(HKEY_LOCAL_MACHINE, kPath));
}

}  // namespace
}  // namespace qxtest
