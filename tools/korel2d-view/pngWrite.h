// Writes 8-bit RGB pictures as PNG files.
#pragma once

#include <cstdint>
#include <string>

// rgb: height rows of width * 3 bytes, the top row first. False with the reason in *why.
bool writeRgbPng(const std::string& path, int width, int height, const uint8_t* rgb, std::string* why);
