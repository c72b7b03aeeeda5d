#!/bin/sh
# Reads and writes the simulated drive with mbpoll, a Modbus master of other people's making.
# usage: mbpoll_check.sh PATH_OF_KVT518_SIM
set -eu

simulator=$1
command -v mbpoll >/dev/null || { echo "mbpoll is not installed"; exit 1; }

directory=$(mktemp -d)
mkfifo "$directory/console" "$directory/output"
"$simulator" --link "$directory/COM1" <"$directory/console" >"$directory/output" &
simulator_id=$!
exec 3>"$directory/console" 4<"$directory/output"
finish() {
  kill "$simulator_id" 2>/dev/null || true
  wait "$simulator_id" 2>/dev/null || true
  rm -rf "$directory"
}
trap finish EXIT

fail() {
  echo "FAILED: $1"
  kill "$simulator_id" 2>/dev/null || true
  echo "--- the simulator said:"
  cat <&4
  exit 1
}

# The first line comes when the link is there.
read -r first <&4 || fail "the simulator ended"
case $first in
  *" link $directory/COM1 -> /dev/pts/"*) ;;
  *) fail "no link but: $first" ;;
esac

master() {
  mbpoll -m rtu -a 1 -b 38400 -d 8 -s 2 -P none -0 -1 -o 2 -t 4 "$@" 2>&1
}

# The value that mbpoll printed for a register.
value_of() {
  printf '%s\n' "$2" | sed -n "s/^\[$1\]:[[:space:]]*\([0-9]*\).*/\1/p"
}

expect() {
  [ "$2" = "$3" ] || fail "$1 is '$2', not '$3'"
}

motor=$(master -r 245 -c 8 "$directory/COM1") || fail "read of 8 registers: $motor"
expect "peak current" "$(value_of 245 "$motor")" 840
expect "rated power" "$(value_of 252 "$motor")" 400

block=$(master -r 256 -c 50 "$directory/COM1") || fail "read of a block of samples: $block"
expect "last sample of the block" "$(value_of 305 "$block")" 0

written=$(master -r 34 "$directory/COM1" 7) || fail "write of one register: $written"
read_back=$(master -r 34 -c 1 "$directory/COM1") || fail "read after the write: $read_back"
expect "pole pairs" "$(value_of 34 "$read_back")" 7

refused=$(master -r 900 -c 1 "$directory/COM1") && fail "a register that is not there was read"
case $refused in
  *"Illegal data address"*) ;;
  *) fail "the refusal was not understood: $refused" ;;
esac

# What the console is told shows on the line.
echo error brake >&3
log=$(master -r 16 -c 10 "$directory/COM1") || fail "read of the error log: $log"
expect "newest error" "$(value_of 16 "$log")" 128
expect "error before it" "$(value_of 17 "$log")" 0

# A device that goes away comes back under the same link.
echo fault hang-up 1 >&3
master -r 0 -c 1 "$directory/COM1" >/dev/null && fail "a device that hung up was read"
while read -r line <&4; do
  case $line in *" link $directory/COM1 -> "*) break ;; esac
done
back=$(master -r 252 -c 1 "$directory/COM1") || fail "read after the hang-up: $back"
expect "rated power" "$(value_of 252 "$back")" 400

echo quit >&3
wait "$simulator_id" || fail "the simulator's exit code is not 0"
[ ! -e "$directory/COM1" ] || fail "the link is still there"
echo "mbpoll reads and writes the simulated drive"
