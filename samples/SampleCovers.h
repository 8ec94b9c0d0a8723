// The covers of the sample player: drawn, and stored as a player of the fifth generation stores them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace samples {

// The id of the image that a song names, by its position in SampleSongs(); 0: none.
uint32_t SampleImageId(size_t song);

// Whether a cover belongs to the song; one names no image and is found by its persistent id.
bool SampleHasCover(size_t song);

// The list of pictures: the file "ArtworkDB".
std::string SampleArtworkDB();

// The pictures in one of the two sizes, which are 100 and 200 pixels wide and high: the files "F1028_1.ithmb"
// and "F1029_1.ithmb".
std::string SamplePictures(uint32_t side);

// What is drawn of a picture, red, green and blue a pixel, at a size; `picture` counts from 0.
std::string DrawnCover(size_t picture, uint32_t side);

}  // namespace samples
