#include "benchmarks/peers/SoundFile.h"

#include "benchmarks/Records.h"

#include <taglib/id3v2tag.h>
#include <taglib/textidentificationframe.h>
#include <taglib/wavfile.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>

namespace bench
{
namespace
{
using Frame = TagLib::ID3v2::UserTextIdentificationFrame;
using TagLib::RIFF::WAV::File;

constexpr std::uint32_t kSampleBytes = std::uint32_t(1) << 30;
constexpr std::uint32_t kFormatSize = 16;

std::string littleEndian(std::uint32_t number, unsigned int width)
{
    std::string bytes;
    for (unsigned int i = 0; i < width; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    return bytes;
}

/// 16 bits, one channel, 44100 samples a second.
std::string formatChunk()
{
    return "fmt " + littleEndian(kFormatSize, 4) + littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(44100, 4) +
           littleEndian(88200, 4) + littleEndian(2, 2) + littleEndian(16, 2);
}

void writeSilence(const std::string& name)
{
    const std::string head = "WAVE" + formatChunk() + "data" + littleEndian(kSampleBytes, 4);
    std::ofstream file(name, std::ios::binary | std::ios::trunc);
    file << "RIFF" << littleEndian(static_cast<std::uint32_t>(head.size()) + kSampleBytes, 4) << head;
    if (!file.flush())
        throw WrongResult("cannot write " + name);
    std::filesystem::resize_file(name, 8 + head.size() + kSampleBytes);
}

TagLib::String utf8(const std::string& text)
{
    return {text, TagLib::String::UTF8};
}

TagLib::String description(std::size_t i)
{
    return utf8("label " + std::to_string(i));
}

void setText(File& file, std::size_t i, const std::string& text)
{
    TagLib::ID3v2::Tag& tag = *file.ID3v2Tag();
    Frame* frame = Frame::find(&tag, description(i));
    if (!frame)
    {
        frame = new Frame(TagLib::String::UTF8); // the tag owns it
        frame->setDescription(description(i));
        tag.addFrame(frame);
    }
    frame->setText(utf8(text));
}

void save(File& file)
{
    if (!file.save(File::ID3v2, File::StripOthers))
        throw WrongResult("TagLib does not save");
}
} // namespace

SoundFile::SoundFile(const std::vector<std::string>& texts)
    : mName((std::filesystem::temp_directory_path() / ("vumo_bench_" + std::to_string(getpid()) + ".wav")).string())
{
    writeSilence(mName);
    File file(mName.c_str(), false);
    for (std::size_t i = 0; i < texts.size(); ++i)
        setText(file, i, texts[i]);
    save(file);
}

SoundFile::~SoundFile()
{
    std::error_code ignored;
    std::filesystem::remove(mName, ignored);
}

void SoundFile::edit(unsigned int i, const std::string& text) const
{
    File file(mName.c_str(), false);
    setText(file, i, text);
    save(file);
}

std::vector<std::string> SoundFile::texts() const
{
    std::vector<std::string> result;
    File file(mName.c_str(), false);
    while (Frame* const frame = Frame::find(file.ID3v2Tag(), description(result.size())))
        result.push_back(frame->fieldList().back().to8Bit(true));
    return result;
}
} // namespace bench
