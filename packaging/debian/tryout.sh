#!/bin/bash
# Runs inside of a clean system, under a session bus and an X server of its own: what the desktop does
# with a document, told by the windows that come of it. scripts/check-package.sh copies it there.
set -u

document=/root/letter.quorvane
pictures=/root/pictures
mkdir -p "$pictures"
faults=0

expect() {
    if [ "$2" = "$3" ]; then
        echo "ok    $1: $3"
    else
        echo "FAULT $1: $3 where $2 belongs"
        faults=$((faults + 1))
    fi
}

# Waits for a window of that title, takes a picture and ends the program, each time the one there is.
expect_window() {
    local window
    window=$(timeout 120 xdotool search --sync --onlyvisible --name "$2" | head -n 1)
    sync_picture "$1"
    expect "$1" shown "$([ -n "$window" ] && echo shown || echo nothing)"
    [ -n "$window" ] && end_of "$(xdotool getwindowpid "$window")"
}

sync_picture() {
    import -window root "$pictures/${1// /-}.png"
}

end_of() {
    kill -TERM "$1" && timeout 60 tail --pid="$1" -f /dev/null
}

call() {
    gdbus call --session --dest com.orbelt.Quorvane --object-path /com/orbelt/Quorvane \
        --method org.freedesktop.Application."$@" >/dev/null
}

dbus-update-activation-environment DISPLAY HOME
expect "type by the name" application/x-quorvane "$(xdg-mime query filetype "$document")"
cp "$document" /root/letter
expect "type by the content" application/x-quorvane "$(xdg-mime query filetype /root/letter)"
expect "program for the type" com.orbelt.Quorvane.desktop \
    "$(xdg-mime query default application/x-quorvane)"
expect "program for the terminal" 0 "$(quorvane-cli info "$document" >/dev/null; echo $?)"

xdg-open "$document" &
expect_window "xdg-open" '^letter'
gio open "$document"
expect_window "a file manager over the bus" '^letter'
call ActivateAction new-document '[]' '{}'
expect_window "action New Document" '^Untitled'
call ActivateAction preferences '[]' '{}'
expect_window "action Preferences" '^General'
quorvane --preferences &
expect_window "option preferences" '^General'

[ "$faults" -eq 0 ]
