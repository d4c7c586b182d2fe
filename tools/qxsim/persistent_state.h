// What the instrument keeps when it is switched off: sections of the state in one readable JSON file.
//
// The file is replaced as a whole: killed at any moment, the simulator leaves the old state or the new one.
#ifndef QXSIM_PERSISTENT_STATE_H
#define QXSIM_PERSISTENT_STATE_H

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "instrument/state.h"
#include "qxsim/system/files.h"

namespace qxsim {

using host::instrument::Json;

/// Use: make it, Add every section that persists, Begin; from then on Save a section at each of its changes.
///
/// Only one at a time may use the file: the home's lock sees to that. Add and Begin on one thread; Save on any.
class PersistentState {
 public:
  /// Reads the file, if there is one. Throws StartError, and leaves the file alone, when it is damaged or not ours.
  explicit PersistentState(const std::filesystem::path& file);

  /// Restores the section from the file, or leaves it as it is when the file knows nothing of it. Throws StartError
  /// when the file holds what the section does not take.
  void Add(host::instrument::StateSection& section);

  /// Writes the file unless it holds just this already. Throws StartError when it cannot be written, or holds a section
  /// that nobody has added.
  void Begin();

  /// Keeps a section's new content; 0 when it is on the disk, else errno with the file as it was. Nothing is written
  /// when nothing has changed. The caller sees to it that a section's contents come in their order: it holds whatever
  /// makes the section's changes one after the other. The only lock taken here is the last one of all.
  int Save(const std::string& section, const Json& content);

 private:
  struct Section {
    std::string name;
    std::string text;
  };

  void Take(const nlohmann::json& document);
  std::string FileText(const Section* changed, const std::string& changed_text) const;

  const KeptFile file_;
  std::map<std::string, Json> read_;  // sections of the file that nobody has added yet
  std::string read_text_;             // the file as it was read
  std::mutex mutex_;
  std::vector<Section> sections_;  // guarded by mutex_; what the file holds, in its order
};

}  // namespace qxsim

#endif
