// The members of a JSON object in a request, read strictly: a wrong type or an unknown member is an error.
#ifndef QXSIM_API_MEMBERS_H
#define QXSIM_API_MEMBERS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qxsim/api/http_types.h"

namespace qxsim {

/// Every read names its member; a member that is absent gives nothing. All throw ApiError(400).
class Members {
 public:
  /// The object must outlive the reader.
  Members(const Json& object, std::vector<std::string_view> known);

  bool Has(const char* name) const;
  bool IsNull(const char* name) const;
  std::optional<bool> Bool(const char* name) const;
  /// A whole number from lowest to highest.
  std::optional<std::int64_t> Integer(const char* name, std::int64_t lowest, std::int64_t highest) const;
  std::optional<double> Number(const char* name) const;
  std::optional<std::string> Text(const char* name) const;
  /// The member itself, whatever it is; null when absent.
  const Json* Find(const char* name) const;

 private:
  const Json& object_;
};

constexpr std::int64_t kHighestUint32 = 0xFFFFFFFF;

}  // namespace qxsim

#endif
