#include "vorbis.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <vorbis/vorbisenc.h>

namespace zentrak::music {

namespace {

const int SERIAL = 126; // of the stream: any constant will do
const int BLOCK = 1024;

void writePage(std::ofstream& out, const ogg_page& page) {
    out.write(reinterpret_cast<const char*>(page.header), page.header_len);
    out.write(reinterpret_cast<const char*>(page.body), page.body_len);
}

// Writes the full pages of the packets that are ready.
void drain(std::ofstream& out, ogg_stream_state& stream, vorbis_dsp_state& encoder, vorbis_block& block) {
    ogg_packet packet;
    ogg_page page;
    while (vorbis_analysis_blockout(&encoder, &block) == 1) {
        vorbis_analysis(&block, nullptr);
        vorbis_bitrate_addblock(&block);
        while (vorbis_bitrate_flushpacket(&encoder, &packet)) {
            ogg_stream_packetin(&stream, &packet);
            while (ogg_stream_pageout(&stream, &page))
                writePage(out, page);
        }
    }
}

} // namespace

void writeVorbis(const std::string& path, const Track& track, float quality, const std::string& title) {
    std::ofstream out(path, std::ios::binary);
    vorbis_info info;
    vorbis_info_init(&info);
    if (vorbis_encode_init_vbr(&info, 2, RATE, quality) != 0)
        throw std::runtime_error("no such quality");
    vorbis_comment comment;
    vorbis_comment_init(&comment);
    vorbis_comment_add_tag(&comment, "TITLE", title.c_str());
    vorbis_dsp_state encoder;
    vorbis_analysis_init(&encoder, &info);
    vorbis_block block;
    vorbis_block_init(&encoder, &block);
    ogg_stream_state stream;
    ogg_stream_init(&stream, SERIAL);

    ogg_packet headers[3];
    vorbis_analysis_headerout(&encoder, &comment, &headers[0], &headers[1], &headers[2]);
    for (ogg_packet& header : headers)
        ogg_stream_packetin(&stream, &header);
    ogg_page page;
    while (ogg_stream_flush(&stream, &page)) // audio starts on a new page
        writePage(out, page);

    for (int frame = 0; frame < track.frames(); frame += BLOCK) {
        int count = std::min(BLOCK, track.frames() - frame);
        float** samples = vorbis_analysis_buffer(&encoder, count);
        std::copy_n(track.left.begin() + frame, count, samples[0]);
        std::copy_n(track.right.begin() + frame, count, samples[1]);
        vorbis_analysis_wrote(&encoder, count);
        drain(out, stream, encoder, block);
    }
    vorbis_analysis_wrote(&encoder, 0);
    drain(out, stream, encoder, block);

    ogg_stream_clear(&stream);
    vorbis_block_clear(&block);
    vorbis_dsp_clear(&encoder);
    vorbis_comment_clear(&comment);
    vorbis_info_clear(&info);
    out.close();
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

} // namespace zentrak::music
