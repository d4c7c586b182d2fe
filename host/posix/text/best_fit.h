// What stands for a character that a code page lacks, by its looks: the platform's own choice.
#ifndef QXHOST_POSIX_TEXT_BEST_FIT_H
#define QXHOST_POSIX_TEXT_BEST_FIT_H

namespace host {

/// A character of the code page; 0 when it has none that would do.
char16_t WesternBestFit(char16_t character);
char16_t JapaneseBestFit(char16_t character);

}  // namespace host

#endif
