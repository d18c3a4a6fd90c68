#!/usr/bin/env bash
# Runs one fuzzer for ctest, keeping its chatter in a log beside the corpus and
# printing only the final statistics (and everything when it finds something).
#   run-fuzzer.sh LOG FUZZER [libFuzzer arguments...]
set -uo pipefail
log=$1; shift
"$@" >"$log" 2>&1
status=$?
if [ $status -ne 0 ]; then
  cat "$log"
else
  grep -E '^stat::|^Done [0-9]+ runs' "$log"
fi
exit $status
