# Writes OUTPUT: the bytes of PAGE as a C++ constant (see panel.h).
file(READ ${PAGE} hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
file(WRITE ${OUTPUT}.new
  "#include \"qxsim/panel/panel.h\"\n\nnamespace qxsim {\nnamespace {\nconstexpr char kBytes[] = {${bytes}};\n}  // namespace\n"
  "std::string_view PanelPage() { return {kBytes, sizeof kBytes}; }\n}  // namespace qxsim\n")
file(RENAME ${OUTPUT}.new ${OUTPUT})
