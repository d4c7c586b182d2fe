// Letters and the marks that go with them.
#ifndef QXHOST_POSIX_TEXT_LETTERS_H
#define QXHOST_POSIX_TEXT_LETTERS_H

namespace host {

/// The one character for a letter and the combining mark behind it, 0 when there is none that a supported code page
/// holds or has something for.
char16_t Compose(char16_t letter, char16_t mark);

}  // namespace host

#endif
