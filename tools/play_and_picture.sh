#!/bin/sh
# Plays the show in data/ on the display of the environment with a sound device that nobody hears, and writes a
# picture of the screen every ten seconds:
#   tools/play_and_picture.sh FOLDER
# The exit status is the show's, or 1 if it has not ended within a quarter of an hour.
set -u
pictures=$1
cd "$(dirname "$0")/../data" || exit 1

ALSOFT_DRIVERS=null
export ALSOFT_DRIVERS
../build/show/app/zentrak &
show=$!
trap 'kill $show 2>/dev/null' INT TERM

second=0
while kill -0 $show 2>/dev/null; do
    sleep 1
    second=$((second + 1))
    if [ $((second % 10)) -eq 0 ] && kill -0 $show 2>/dev/null; then
        name=$(printf '%s/show-%03ds.png' "$pictures" $second)
        import -silent -window root "$name" || echo "no picture at second $second"
    fi
    if [ $second -ge 900 ]; then
        echo "The show has not ended after $second seconds."
        kill $show
        exit 1
    fi
done
wait $show
