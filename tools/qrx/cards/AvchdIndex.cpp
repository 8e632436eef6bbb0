#include "qrx/cards/AvchdIndex.h"

#include "qrx/cards/ByteWriter.h"

namespace qrx::tool {

namespace {

// As the transport stream muxer of ffmpeg numbers them for cards and discs.
constexpr unsigned kProgramMapPid = 0x0100;
constexpr unsigned kVideoPid = 0x1011;
constexpr unsigned kAudioPid = 0x1100;
constexpr unsigned kClockPid = 0x1001;

constexpr unsigned kH264 = 0x1B;
constexpr unsigned kMpeg2Video = 0x02;
constexpr unsigned kAc3 = 0x81;
constexpr unsigned kMpegAudio = 0x04;
constexpr unsigned kFormat1080AndRate2997 = 0x64;  // progressive 1080 lines, 30000/1001 a second
constexpr unsigned kStereoAnd48kHz = 0x31;

constexpr std::size_t kHeaderBytes = 40;
constexpr std::uint32_t kMovieObjectCommandPlayList = 0x22800000;  // play the list of the operand

/// The 40 bytes at the start of each file: what it is, where its parts begin, then zeros.
ByteWriter header(std::string_view type, const std::vector<std::size_t>& partStarts) {
    ByteWriter bytes;
    bytes.text(type).text("0100");
    for (const std::size_t start : partStarts) {
        bytes.u32(static_cast<std::uint32_t>(start));
    }
    return bytes.zeros(kHeaderBytes - bytes.size());
}

std::size_t withLength(const ByteWriter& block) {
    return sizeof(std::uint32_t) + block.size();
}

ByteWriter clipFacts(const TransportStream& stream) {
    constexpr std::uint32_t kBytesPerSecond = 3'000'000;  // 24 Mbit/s, the most that AVCHD allows
    constexpr std::size_t kReserved = 128;
    ByteWriter typeInformation;
    typeInformation.u8(0x80).text("HDMV").zeros(25);
    return ByteWriter()
        .zeros(2)
        .u8(1)   // clip stream
        .u8(1)   // main path of a movie
        .u32(0)  // arrival times run on
        .u32(kBytesPerSecond)
        .u32(stream.packets)
        .zeros(kReserved)
        .block16(typeInformation);
}

ByteWriter sequenceFacts(const TransportStream& stream) {
    return ByteWriter()
        .u8(0)
        .u8(1)  // one sequence of arrival times, from the first packet
        .u32(0)
        .u8(1)  // one clock
        .u8(0)
        .u16(kClockPid)
        .u32(0)
        .u32(stream.firstTime)
        .u32(stream.lastTime);
}

ByteWriter programFacts(const TransportStream& stream) {
    constexpr std::size_t kCodingBytes = 21;
    ByteWriter video;
    video.u8(stream.isMpeg2 ? kMpeg2Video : kH264).u8(kFormat1080AndRate2997).u8(0x30);
    video.zeros(kCodingBytes - video.size());
    ByteWriter audio;
    audio.u8(stream.hasMpegAudio ? kMpegAudio : kAc3).u8(kStereoAnd48kHz).text("und");
    audio.zeros(kCodingBytes - audio.size());
    return ByteWriter()
        .u8(0)
        .u8(1)  // one program, from the first packet
        .u32(0)
        .u16(kProgramMapPid)
        .u8(2)
        .u8(0)
        .u16(kVideoPid)
        .block8(video)
        .u16(kAudioPid)
        .block8(audio);
}

/// The table of places to start playing: the first picture alone.
ByteWriter entryPoints(const TransportStream& stream) {
    constexpr std::size_t kMapBytes = 14;  // from its start to the tables of the one stream
    ByteWriter map;
    map.u8(0).u8(1).u16(kVideoPid);
    // 10 bits 0, 4 bits kind 1, 16 bits coarse entries 1, 18 bits fine entries 1
    map.u16(0x0004).u32(0x00040001).u32(kMapBytes);
    const std::uint32_t coarse = stream.firstTime >> 18U & 0x3FFFU;
    const std::uint32_t fine = stream.firstTime >> 8U & 0x7FFU;
    constexpr std::uint32_t kFineTableStart = 12;
    map.u32(kFineTableStart).u32(coarse).u32(0);
    map.u32(0x10000000U | fine << 17U);
    return ByteWriter().u16(1).text(map.bytes());
}

unsigned decimalDigits(unsigned value) {
    constexpr unsigned kTen = 10;
    return value / kTen << 4U | value % kTen;
}

ByteWriter makersBlock(const StartTimecode& start, const TimecodePlace& place) {
    constexpr std::size_t kBlockBytes = 256;
    ByteWriter block;
    block.zeros(kBlockBytes - place.bytesBeforeEnd);
    block.u8(decimalDigits(start.frames) | place.frameFlags)
        .u8(decimalDigits(start.seconds))
        .u8(decimalDigits(start.minutes))
        .u8(decimalDigits(start.hours));
    return block.zeros(kBlockBytes - block.size());
}

ByteWriter extensionData(const ByteWriter& block) {
    constexpr unsigned kMakersPrivateData = 0x1000;
    constexpr std::uint32_t kBlockStart = 24;  // from the length on
    return ByteWriter()
        .u32(kBlockStart)
        .zeros(3)
        .u8(1)
        .u16(kMakersPrivateData)
        .u16(0x0100)
        .u32(kBlockStart)
        .u32(static_cast<std::uint32_t>(block.size()))
        .text(block.bytes());
}

ByteWriter streamEntry(unsigned pid) {
    return ByteWriter().u8(1).u16(pid).zeros(6);
}

ByteWriter streamTable(const TransportStream& stream) {
    ByteWriter video;
    video.u8(stream.isMpeg2 ? kMpeg2Video : kH264).u8(kFormat1080AndRate2997).zeros(3);
    ByteWriter audio;
    audio.u8(stream.hasMpegAudio ? kMpegAudio : kAc3).u8(kStereoAnd48kHz).text("und");
    return ByteWriter()
        .zeros(2)
        .u8(1)  // video streams
        .u8(1)  // audio streams
        .zeros(10)
        .block8(streamEntry(kVideoPid))
        .block8(video)
        .block8(streamEntry(kAudioPid))
        .block8(audio);
}

ByteWriter playItem(const std::string& clip, const TransportStream& stream) {
    return ByteWriter()
        .text(clip)
        .text("M2TS")
        .u16(1)  // does not run on from the item before
        .u8(0)
        .u32(stream.firstTime)
        .u32(stream.lastTime)
        .zeros(8)
        .u8(0)
        .u8(0)
        .u16(0)
        .block16(streamTable(stream));
}

}  // namespace

std::string indexFile() {
    constexpr std::size_t kUserDataBytes = 32;
    constexpr std::uint32_t kMovieObject = 0x40000000;
    ByteWriter appearance;
    appearance.u8(0).u8(kFormat1080AndRate2997).zeros(kUserDataBytes);
    ByteWriter objects;
    for (int i = 0; i < 2; ++i) {  // what plays first, and the menu
        objects.u32(kMovieObject).u16(0).u16(0).u32(0);
    }
    objects.u16(1).u32(kMovieObject).u16(0).u16(0).u32(0);
    return header("INDX", {kHeaderBytes + withLength(appearance)})
        .block32(appearance)
        .block32(objects)
        .bytes();
}

std::string movieObjectFile() {
    ByteWriter objects;
    objects.u32(0).u16(1).u16(0x8000).u16(1);
    objects.u32(kMovieObjectCommandPlayList).u32(0).u32(0);
    return header("MOBJ", {}).block32(objects).bytes();
}

std::string clipInformationFile(const TransportStream& stream, const StartTimecode& start,
                                const TimecodePlace& place) {
    const ByteWriter facts = clipFacts(stream);
    const ByteWriter sequences = sequenceFacts(stream);
    const ByteWriter programs = programFacts(stream);
    const ByteWriter entries = entryPoints(stream);
    const ByteWriter marks;
    const std::size_t sequencesAt = kHeaderBytes + withLength(facts);
    const std::size_t programsAt = sequencesAt + withLength(sequences);
    const std::size_t entriesAt = programsAt + withLength(programs);
    const std::size_t marksAt = entriesAt + withLength(entries);
    const std::size_t extensionAt = marksAt + withLength(marks);
    return header("HDMV", {sequencesAt, programsAt, entriesAt, marksAt, extensionAt})
        .block32(facts)
        .block32(sequences)
        .block32(programs)
        .block32(entries)
        .block32(marks)
        .block32(extensionData(makersBlock(start, place)))
        .bytes();
}

std::string playlistFile(const std::vector<std::string>& clips, const TransportStream& stream) {
    ByteWriter appearance;
    appearance.u8(0).u8(1).u16(0).zeros(8).u16(0);
    ByteWriter items;
    items.u16(0).u16(static_cast<unsigned>(clips.size())).u16(0);
    ByteWriter marks;
    marks.u16(static_cast<unsigned>(clips.size()));
    for (std::size_t i = 0; i < clips.size(); ++i) {
        items.block16(playItem(clips[i], stream));
        marks.u8(0).u8(1).u16(static_cast<unsigned>(i)).u32(stream.firstTime).u16(0xFFFF).u32(0);
    }
    const std::size_t itemsAt = kHeaderBytes + withLength(appearance);
    return header("MPLS", {itemsAt, itemsAt + withLength(items)})
        .block32(appearance)
        .block32(items)
        .block32(marks)
        .bytes();
}

}  // namespace qrx::tool
