// ST_PRM, GT_PRM: six measuring parameters, kept by the instrument's system library.
//   C<ST_PRM,FT_PRS=1000,CR_TLT=1>  ->  ACK                                   (table order: CR_TLT first)
//   C<GT_PRM,AC_EDM,FT_TMP>         ->  R<PRM,FT_TMP=20.5000,AC_EDM=6S>, ACK
// ST_PRM stops at the first parameter that is refused; those before it stay set.
#include <cstdint>
#include <iterator>
#include <string_view>

#include "QXCommMgr.h"
#include "commands/measure/valuetext/angle_text.h"
#include "commands/measure/valuetext/number_text.h"
#include "platform/qxsystem.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kEdmCodes[] = {"0", "6S", "30S", "3M", "10M", "ATO"};  // by code

bool SetInteger(std::int32_t index, std::string_view text) {
  return QxSystemSetIntegerParameter(index, ParseLeadingInt(text)) == 0;
}

bool SetDouble(std::int32_t index, std::string_view text) {
  return QxSystemSetDoubleParameter(index, ParseLeadingDouble(text)) == 0;
}

bool SetEdm(std::int32_t index, std::string_view text) {
  for (std::size_t code = 0; code < std::size(kEdmCodes); ++code) {
    if (kEdmCodes[code] == text) return QxSystemSetEdmCode(index, static_cast<std::int32_t>(code)) == 0;
  }
  return false;
}

void AddInteger(Reply& reply, std::string_view key, std::int32_t index) {
  std::int32_t value = 0;
  QxSystemGetIntegerParameter(index, &value);
  reply.AddInt(key, value);
}

void AddDouble(Reply& reply, std::string_view key, std::int32_t index) {
  double value = 0;
  QxSystemGetDoubleParameter(index, &value);
  char text[kValueTextSize];
  reply.Add(key, FormatFixed4(text, sizeof text, value));
}

// A code without a text is an empty value, though ST_PRM refuses an empty one (kept).
void AddEdm(Reply& reply, std::string_view key, std::int32_t index) {
  std::int32_t code = 0;
  QxSystemGetEdmCode(index, &code);
  const bool known = code >= 0 && code < static_cast<std::int32_t>(std::size(kEdmCodes));
  reply.Add(key, known ? kEdmCodes[code] : std::string_view());
}

struct Row {
  std::string_view key;
  std::int32_t index;  // in its group
  bool (*set)(std::int32_t index, std::string_view text);
  void (*add)(Reply& reply, std::string_view key, std::int32_t index);
  LPARAM notice;
};
constexpr Row kRows[] = {
    {"CR_TLT", 0, SetInteger, AddInteger, 1}, {"CR_T-P", 1, SetInteger, AddInteger, 2},
    {"CR_AXS", 2, SetInteger, AddInteger, 3}, {"FT_TMP", 0, SetDouble, AddDouble, 4},
    {"FT_PRS", 1, SetDouble, AddDouble, 5},   {"AC_EDM", 0, SetEdm, AddEdm, 6},
};

}  // namespace

std::int32_t StPrm(CommandProcessor& processor, const FieldMap& fields) {
  for (const Row& row : kRows) {
    const auto* text = fields.Find(row.key);
    if (text == nullptr) continue;
    if (!row.set(row.index, *text)) return kBadParameter;
    processor.PostNotification(QCM_NOTIFY_PARAMETERS_CHANGED, row.notice);
  }
  return kDone;
}

std::int32_t GtPrm(CommandProcessor& processor, const FieldMap& fields) {
  Reply reply("PRM");
  for (const Row& row : kRows) {
    if (fields.Has(row.key)) row.add(reply, row.key, row.index);
  }
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
