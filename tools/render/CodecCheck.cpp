#include "tools/render/CodecCheck.h"

#if AMBREL_RENDER_CHECKS_CODECS

#include <FLAC/stream_decoder.h>
#include <vorbis/vorbisfile.h>

#include <memory>

namespace ambrel::render
{

namespace
{

struct FlacFindings
{
    FLAC__uint64 numDecoded = 0;
    FLAC__uint64 numPromised = 0; ///< 0 if the header does not say
    bool damaged = false;
};

FLAC__StreamDecoderWriteStatus countSamples(const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                            const FLAC__int32* const*, void* findings)
{
    static_cast<FlacFindings*>(findings)->numDecoded += frame->header.blocksize;
    return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
}

void noteLength(const FLAC__StreamDecoder*, const FLAC__StreamMetadata* metadata, void* findings)
{
    if (metadata->type == FLAC__METADATA_TYPE_STREAMINFO)
        static_cast<FlacFindings*>(findings)->numPromised = metadata->data.stream_info.total_samples;
}

void noteDamage(const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* findings)
{
    static_cast<FlacFindings*>(findings)->damaged = true;
}

} // namespace

bool isSoundFlacFile(const std::string& path)
{
    const std::unique_ptr<FLAC__StreamDecoder, decltype(&FLAC__stream_decoder_delete)> decoder(
        FLAC__stream_decoder_new(), FLAC__stream_decoder_delete);
    FlacFindings findings;

    FLAC__stream_decoder_set_md5_checking(decoder.get(), true);

    if (FLAC__stream_decoder_init_file(decoder.get(), path.c_str(), countSamples, noteLength, noteDamage,
                                       &findings) != FLAC__STREAM_DECODER_INIT_STATUS_OK)
        return false;

    const bool decoded = FLAC__stream_decoder_process_until_end_of_stream(decoder.get()) != 0;
    const bool sumAgrees = FLAC__stream_decoder_finish(decoder.get()) != 0;
    const bool complete = findings.numPromised == 0 || findings.numDecoded == findings.numPromised;
    return decoded && sumAgrees && complete && !findings.damaged;
}

bool isSoundOggFile(const std::string& path)
{
    constexpr int samplesAtATime = 4096;

    OggVorbis_File file;

    if (ov_fopen(path.c_str(), &file) != 0)
        return false;

    long samples = 0;

    do
    {
        float** channels = nullptr;
        int section = 0;
        samples = ov_read_float(&file, &channels, samplesAtATime, &section);
    } while (samples > 0);

    ov_clear(&file);
    return samples == 0;
}

} // namespace ambrel::render

#else

// The codecs are the ones inside JUCE, which cannot be asked.

namespace ambrel::render
{

bool isSoundFlacFile(const std::string&) { return true; }

bool isSoundOggFile(const std::string&) { return true; }

} // namespace ambrel::render

#endif
