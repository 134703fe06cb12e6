#ifndef TESTS_SUPPORT_PNG_H
#define TESTS_SUPPORT_PNG_H

/// \file
/// PNG files of the pictures that tests compare.

#include "support/RgbaImage.h"

#include <string>

namespace test
{

/// Writes an RGBA PNG, upper row first as the format wants it. False if the file can't be written.
bool writePng(const std::string &path, const RgbaImage &image);

/// Reads a PNG of any kind as RGBA, 8 bits a channel. False, with image untouched, if the file can't be read.
bool readPng(const std::string &path, RgbaImage &image);

} // namespace test

#endif
