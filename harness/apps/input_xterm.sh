#!/bin/sh
# Runs in a terminal: writes what the terminal reports of the user's mouse to the file of the first argument, and
# shows what is appended to the file of the second one.
stty raw -echo
for line in $(seq 40); do
    printf 'mirror window pinned floating panel\r\n'
done
# Presses, releases and motion with a button down, in decimal.
printf '\033[?1002h\033[?1006h'
: >"$2"
tail -f "$2" &
exec cat >"$1"
