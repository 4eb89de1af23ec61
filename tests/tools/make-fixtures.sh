#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Records what the installed ffmpeg prints when the tool runs it on small clips of the common kinds, and what ffprobe
# says of the same clips. Usage: make-fixtures.sh TOOL, with TOOL the built resources/tools/ffmpeg. The expected classic
# transcripts beside the recordings are written by
#   TAVRIX_ACCEPT_TRANSCRIPTS=1 test_tools --gtest_filter='*Recorded*'
# and are to be read before they are committed.
set -eu

tool=$(realpath "$1")
here=$(dirname "$(realpath "$0")")
real=$(command -v ffmpeg)
version=$("$real" -version | sed -n '1s/^ffmpeg version \([0-9]*\.[0-9]*\).*/\1/p')
data="$here/data/ffmpeg-$version"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$data" "$work/bin"
cd "$work"

cat > bin/ffmpeg <<END
#!/bin/sh
exec "$real" "\$@" 2>recorded
END
chmod +x bin/ffmpeg

quiet() { "$real" -nostdin -v error -y "$@"; }
picture() { printf 'testsrc2=s=%s:r=%s' "$1" "$2"; }
sound="sine=1000:r=48000"

quiet -f lavfi -i "$(picture 1280x720 60000/1001)" -f lavfi -i $sound -t 2 -ac 2 -c:v libx264 -preset ultrafast \
    -pix_fmt yuv420p -c:a ac3 -b:a 192k -streamid 0:0x1011 -streamid 1:0x1100 -f mpegts clip.MTS
quiet -f lavfi -i "$(picture 1440x1080 25)" -f lavfi -i $sound -t 2 -ac 2 -vf setsar=4/3 -c:v libx264 -preset ultrafast \
    -flags +ildct+ilme -pix_fmt yuv420p -c:a ac3 -b:a 256k -f mpegts -mpegts_m2ts_mode 1 clip.m2ts
quiet -i clip.MTS -c:v copy -c:a aac -b:a 128k -metadata:s:a:0 language=eng clip.mov
quiet -f lavfi -i "$(picture 640x360 30)" -f lavfi -i $sound -t 2 -ac 1 -c:v mpeg4 -c:a aac -metadata title="A clip" clip.mp4
quiet -f lavfi -i "$(picture 640x480 30)" -f lavfi -i sine=1000:r=11024 -t 2 -c:v mjpeg -q:v 4 -c:a pcm_u8 clip.avi
quiet -f lavfi -i "$(picture 720x576 25)" -f lavfi -i $sound -t 2 -ac 2 -vf setdar=16/9 -c:v mpeg2video -b:v 4M \
    -maxrate 9M -bufsize 1835k -c:a ac3 -b:a 448k -f vob clip.mpg
quiet -f lavfi -i "$(picture 720x576 25)" -f lavfi -i $sound -t 1 -ac 2 -target pal-dv clip.dv
quiet -f lavfi -i "$(picture 1280x720 50)" -f lavfi -i "$sound" -f lavfi -i $sound -f lavfi -i $sound -t 2 \
    -map 0:v -map 1:a -map 2:a -map 3:a -c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a:0 ac3 -ac:a:0 6 -c:a:1 mp2 \
    -ac:a:1 2 -c:a:2 aac -ac:a:2 1 -metadata:s:a:0 language=eng -metadata:s:a:1 language=fre \
    -metadata:s:a:2 language=deu -f mpegts languages.MTS
quiet -i clip.mov -an -c:v copy silent.mov
printf '1\n00:00:00,000 --> 00:00:01,000\nHello\n' > text.srt
quiet -i clip.mov -i text.srt -map 0 -map 1 -c copy -c:s mov_text -metadata:s:s:0 language=eng -timecode 01:00:00:00 \
    data-and-subtitles.mov
quiet -f lavfi -i "$(picture 640x480 24000/1001)" -f lavfi -i $sound -t 1 -c:v libx264 -preset ultrafast -pix_fmt yuv420p \
    -c:a pcm_s24le pcm24.mov
quiet -f lavfi -i $sound -t 1 sound-only.wav
: > empty.MTS
head -c 60000 /dev/zero | tr '\0' 'x' > broken.MTS
head -c 300 clip.MTS > short.MTS
head -c 100000 clip.mov > truncated.mov
head -c 300000 clip.MTS > truncated.MTS

record() { # NAME ARGUMENTS...: recorded as NAME.installed
    name=$1
    shift
    PATH="$work/bin:$PATH" "$tool" "$@" > /dev/null 2> /dev/null || true # some are to fail
    sed -e 's/  configuration: .*/  configuration: --prefix=\/usr --enable-gpl --enable-libx264 --enable-shared/' \
        -e 's#/proc/self/fd/[0-9]*#/proc/self/fd/9#g' -e 's/ @ 0x[0-9a-f]*\]/ @ 0x55d0c0de]/g' recorded > "$data/$name.installed"
    rm -f recorded
}

for clip in clip.MTS clip.m2ts clip.mov clip.mp4 clip.avi clip.mpg clip.dv languages.MTS silent.mov \
    data-and-subtitles.mov pcm24.mov sound-only.wav truncated.MTS; do
    case $clip in
    *.wav) record "$clip" -v 2 -f wav -i "$clip" ;; # no container that is opened unasked
    *) record "$clip" -v 2 -i "$clip" ;;
    esac
    ffprobe -v error -show_entries "stream=index,codec_type,codec_name,pix_fmt,width,height,sample_aspect_ratio,\
display_aspect_ratio,r_frame_rate,sample_rate,channels:format=format_name,duration,start_time,bit_rate" \
        -of json "$clip" > "$data/$clip.json"
done
for clip in empty.MTS broken.MTS short.MTS truncated.mov nosuch.MTS .; do
    record "failed-$(printf %s "$clip" | tr . _)" -v 2 -i "$clip"
done

record analysis -v 2 -i clip.MTS -vframes 10 -s 640x480 -pix_fmt yuv420p -an -f yuv4mpegpipe -y out.mp4
record thumbnail -vframes 1 -i clip.MTS -s 320x180 -y out.jpg
record small -v 1 -i clip.MTS -vsync 0 -r 30000/1001 -vcodec mpeg4 -vb 250k -vf scale=480:272,setdar=16:9 -acodec aac \
    -strict experimental -ab 64k -ac 2 -ar 44100 -g 25 -y out.mp4
record rewrap -v 1 -i clip.MTS -vsync 0 -vcodec copy -vbsf h264_mp4toannexb -acodec pcm_s16le -ac 2 -ar 48000 -y out.mov
record duration -i clip.mpg -vcodec copy -an -f null -y /dev/null
record sound -t 5 -i clip.MTS -vn -f wav -y /dev/null
record vsync -v 3 -vframes 35 -i clip.MTS -s 320x240 -pix_fmt yuv420p -an -f null -y /dev/null
record unknown-option -i clip.MTS -nosuchoption 1 -y out.mp4
ls -l "$data"
