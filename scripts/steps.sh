# Sourced by the scripts that run several steps: each step is named, timed and recorded, and a failed one does not
# keep the others from running.
#
#   step NAME COMMAND ...   runs the command; its result goes to the file QX_RESULTS, if that is set
#   $steps_failed           how many steps have failed so far

steps_failed=0

# record KIND NAME: one row for the sum at the end.
record() {
  if [ -n "${QX_RESULTS:-}" ]; then printf '%s\t%s\t\n' "$1" "$2" >>"$QX_RESULTS"; fi
}

step() {
  local name=$1 begin=$SECONDS
  shift
  if "$@"; then
    record passed "$name"
    printf -- '-- %s: passed, %d s\n' "$name" $((SECONDS - begin))
  else
    record failed "$name"
    steps_failed=$((steps_failed + 1))
    printf -- '-- %s: FAILED, %d s\n' "$name" $((SECONDS - begin))
  fi
}
