# Writes OUTPUT: the rows of TABLE (see time_zones.h) as C++.
file(STRINGS ${TABLE} lines)
list(POP_FRONT lines)
set(rows)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "([^,]*),([^,]*),([^,]*),([^,]*),([^,]*),([^,]*),([^,]*),([^,]*),([^,]*)"
         "\\1;\\2;\\3;\\4;\\5;\\6;\\7;\\8;\\9" fields "${line}")
  list(LENGTH fields count)
  if(NOT count EQUAL 9)
    message(FATAL_ERROR "${TABLE}: nine columns are expected: ${line}")
  endif()
  list(GET fields 0 index)
  list(GET fields 1 key)
  list(SUBLIST fields 2 3 biases)
  list(JOIN biases ", " biases)
  list(GET fields 5 standard_date)
  list(GET fields 6 daylight_date)
  string(REPLACE " " ", " standard_date "${standard_date}")
  string(REPLACE " " ", " daylight_date "${daylight_date}")
  list(GET fields 7 standard_name)
  list(GET fields 8 daylight_name)
  string(APPEND rows "    {${index}, TEXT(\"${key}\"), ${biases}, {${standard_date}}, {${daylight_date}},\n"
                     "     TEXT(\"${standard_name}\"), TEXT(\"${daylight_name}\")},\n")
endforeach()
file(WRITE ${OUTPUT}.new
  "#include \"common/registry/time_zones.h\"\n\nnamespace host {\nnamespace {\n\nconstexpr TimeZone kRows[] = {\n${rows}};\n\n"
  "}  // namespace\n\nTimeZoneRows TimeZones() { return {kRows, sizeof kRows / sizeof *kRows}; }\n\n}  // namespace host\n")
file(RENAME ${OUTPUT}.new ${OUTPUT})
