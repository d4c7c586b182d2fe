// GET /files?path=P and PATCH /files: attributes and last-write time of one file or folder of the instrument.
#include <nlohmann/json.hpp>

#include "common/files/file_facts.h"
#include "common/text/utf.h"
#include "qxsim/api/members.h"
#include "qxsim/api/routes.h"
#include "qxsim/api/time_text.h"

namespace qxsim {
namespace {

// A path that leads nowhere is an unknown one, whatever is wrong with it; the rest is this machine's trouble.
[[noreturn]] void Refuse(const std::string& path, DWORD error) {
  if (error == ERROR_NOT_SUPPORTED) throw ApiError(kConflict, path + ": this machine cannot keep these attributes");
  if (error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT) {
    throw ApiError(kConflict, path + ": this machine does not allow it");
  }
  throw ApiError(kNotFound, path + ": no such file or folder (error " + std::to_string(error) + ")");
}

Response ShowFile(const std::string& path) {
  host::InstrumentFile file;
  const DWORD error = host::ReadInstrumentFile(host::Utf8ToWide(path), &file);
  if (error != ERROR_SUCCESS) Refuse(path, error);
  const auto has = [&](DWORD attribute) { return (file.attributes & attribute) != 0; };
  return JsonResponse({{"path", path},
                       {"folder", has(FILE_ATTRIBUTE_DIRECTORY)},
                       {"readonly", has(FILE_ATTRIBUTE_READONLY)},
                       {"hidden", has(FILE_ATTRIBUTE_HIDDEN)},
                       {"system", has(FILE_ATTRIBUTE_SYSTEM)},
                       {"archive", has(FILE_ATTRIBUTE_ARCHIVE)},
                       {"written", TimeText(file.written)}});
}

Response GetFile(const Request& request) {
  const auto path = request.query.find("path");
  if (path == request.query.end() || path->second.empty()) throw ApiError(kBadRequest, "path is expected");
  return ShowFile(path->second);
}

Response PatchFile(const Request& request) {
  const Json json = ParseObject(request.body);
  const Members members(json, {"path", "readonly", "hidden", "system", "archive", "written"});
  const std::string path = members.Text("path").value_or("");
  if (path.empty()) throw ApiError(kBadRequest, "path is expected");
  host::FileChange change = {members.Bool("readonly"), members.Bool("hidden"), members.Bool("system"),
                             members.Bool("archive"), std::nullopt};
  if (const auto written = members.Text("written")) change.written = TimeFrom(*written);
  const DWORD error = host::ChangeInstrumentFile(host::Utf8ToWide(path), change);
  if (error != ERROR_SUCCESS) Refuse(path, error);
  return ShowFile(path);
}

}  // namespace

void AddFileRoutes(Router& router) {
  router.Add("GET", "/api/v1/files", GetFile);
  router.Add("PATCH", "/api/v1/files", PatchFile);
}

}  // namespace qxsim
