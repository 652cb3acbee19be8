#!/bin/sh
# Plays the show in data/ on the current display, silently, and saves a picture of the screen every ten seconds:
#   tools/play_and_picture.sh FOLDER
# The exit status is the show's, or 1 if it has not ended within a quarter of an hour.
set -u
if [ $# -ne 1 ] || [ ! -d "$1" ]; then
    echo "usage: tools/play_and_picture.sh FOLDER     (which must exist)" >&2
    exit 2
fi
pictures=$(cd "$1" && pwd)
cd "$(dirname "$0")/../data" || exit 1
if [ ! -x ../build/show/app/zentrak ]; then
    echo "The show is not built: type ./run" >&2
    exit 1
fi

ALSOFT_DRIVERS=null
export ALSOFT_DRIVERS
../build/show/app/zentrak &
show=$!
trap 'kill $show 2>/dev/null' INT TERM

# By the clock: taking a picture takes time, too.
start=$(date +%s)
next=10
while kill -0 $show 2>/dev/null; do
    sleep 0.5
    second=$(($(date +%s) - start))
    if [ $second -ge $next ] && kill -0 $show 2>/dev/null; then
        name=$(printf '%s/show-%03ds.png' "$pictures" $next)
        import -silent -window root "$name" || echo "no picture at second $next"
        next=$((next + 10))
    fi
    if [ $second -ge 900 ]; then
        echo "The show has not ended after $second seconds."
        kill $show
        exit 1
    fi
done
wait $show
