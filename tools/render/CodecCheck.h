/**
    Finds damage in compressed audio files that decoders gloss over: they put silence in the place of what they
    cannot decode and say nothing.

    Cost: decodes the file once, some hundred times faster than real time. Thread: any.
*/
#pragma once

#include <string>

namespace ambrel::render
{

/** Whether every frame of a FLAC file is sound and the whole agrees with the checksum in its header. */
bool isSoundFlacFile(const std::string& path);

/** Whether an Ogg Vorbis file decodes to its end with no hole. */
bool isSoundOggFile(const std::string& path);

} // namespace ambrel::render
