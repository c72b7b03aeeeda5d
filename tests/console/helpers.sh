# What the scripts of the tests have at hand, in a directory with a simulated drive behind ./D.
PROGRAM=$PROGRAMS/gainsmithctl
FRAMES=frames

# until_seen TEXT FILE: waits until the file has that text; fails where the last program started in
# the background ends before.
until_seen() {
  for i in $(seq 500); do
    grep -qs "$1" "$2" && return
    kill -0 $! 2>/dev/null || return
    sleep 0.1
  done
}

# A busy machine can break the first frame of all in two, and that one is never sent again. Then
# status $s says nothing, and the program is to begin anew.
began() { [ $s != 4 ] || [ "$(cat $FRAMES)" != 'R 253' ]; }

# ctl_now WORDS: becomes the program, with a list of its frames, for signals.
ctl_now() { exec $PROGRAM "$@" --port ./D --log-frames $FRAMES; }

# ctl WORDS: runs it.
ctl() {
  for try in 1 2; do
    (ctl_now "$@"); s=$?
    began && break
  done
  return $s
}

# ctl_until TEXT WHAT WORDS: runs it, and does WHAT when a frame with that text has gone out. Counts
# nothing: a busy machine sends some frames twice.
ctl_until() {
  local text=$1 what=$2
  shift 2
  for try in 1 2; do
    ctl_now "$@" &
    until_seen "$text" $FRAMES
    $what
    wait $!; s=$?
    began && break
  done
  return $s
}
interrupt() { kill -INT $!; }
hang_up() { echo fault hang-up >sim.in; }

# Another program has the port open until the script ends.
hold() {
  for try in 1 2; do
    (FRAMES=held; ctl_now watch >/dev/null 2>&1) &
    until_seen 'R 254' held && break
  done
  trap "kill $!" EXIT
}

# The user of the program may not open the port. Root may open everything, so it is another user
# then, with a copy of the program where that one may run it.
forbid() {
  chmod 000 "$(readlink -f D)"
  [ "$(id -u)" = 0 ] || return 0
  cp "$PROGRAMS/gainsmithctl" . && cp factory.tvd default.ini && chmod -R a+rwX .
  PROGRAM="setpriv --reuid=65534 --regid=65534 --clear-groups ./gainsmithctl"
}

# on_full_disk SCRIPT: runs it where full/a.tvd fills its disk, and shows what is there then. Where
# nothing may be mounted, a limit for files takes the place of the disk.
on_full_disk() {
  local space mount='mount -t tmpfs -o size=4k none full'
  local within='echo old >full/a.tvd; eval "$0"; s=$?; ls -A full; cat full/*; exit $s'
  mkdir full
  export -f began ctl ctl_now
  export PROGRAM FRAMES
  for space in -m -Urm; do
    unshare $space $mount 2>/dev/null && exec unshare $space bash -c "$mount; $within" "$1"
  done
  # Wide enough for the lock of the port. It holds for what the test writes, too, which goes through
  # pipes therefore; and its signal would end a program before that sees its write fail.
  FRAMES=/dev/null
  {
    prlimit --fsize=100 bash -c "trap '' XFSZ; $within" "$1" 2>&1 1>&3 | cat >&2
    exit "${PIPESTATUS[0]}"
  } 3>&1 | cat
  exit "${PIPESTATUS[0]}"
}
