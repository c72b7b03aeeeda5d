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

# expect WHAT REGISTER VALUE FIRST COUNT: what a read of some registers says of one of them.
expect() {
  reply=$(master -r "$4" -c "$5" "$directory/COM1") || fail "no $1: $reply"
  shown=$(printf '%s\n' "$reply" | sed -n "s/^\[$2\]:[[:space:]]*\([0-9]*\).*/\1/p")
  [ "$shown" = "$3" ] || fail "$1 is '$shown', not '$3'"
}

expect "peak current" 245 840 245 8
expect "rated power" 252 400 245 8
expect "last sample of a block" 305 0 256 50
written=$(master -r 34 "$directory/COM1" 7) || fail "write of one register: $written"
expect "pole pairs" 34 7 34 1

refused=$(master -r 900 -c 1 "$directory/COM1") && fail "a register that is not there was read"
case $refused in
  *"Illegal data address"*) ;;
  *) fail "the refusal was not understood: $refused" ;;
esac

# What the console is told shows on the line.
echo error brake >&3
expect "newest error" 16 128 16 10
expect "error before it" 17 0 16 10

# A device that goes away comes back under the same link.
echo fault hang-up 1 >&3
master -r 0 -c 1 "$directory/COM1" >/dev/null && fail "a device that hung up was read"
while read -r line <&4; do
  case $line in *" link $directory/COM1 -> "*) break ;; esac
done
expect "rated power after the hang-up" 252 400 252 1

echo quit >&3
wait "$simulator_id" || fail "the simulator's exit code is not 0"
[ ! -e "$directory/COM1" ] || fail "the link is still there"
echo "mbpoll reads and writes the simulated drive"
