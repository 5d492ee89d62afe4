// Base64 in the alphabet of RFC 4648, for binary data in XML attributes. Stateless: every
// operation is static, an instance costs nothing.
#pragma once

class Base64 {
public:
    Base64() = default;

    // The character of a number 0 to 63 (only its low six bits count).
    static char ntc(unsigned char number);
    // 0 to 63 for a character of the alphabet, kPad for "=", kNoise for anything else.
    static int ctn(char c);
    // Characters that n bytes encode to without line breaks; 0 for n below 1.
    static int getSize(int n);
    // Encodes `length` bytes, a line feed after every `groupsPerLine` full groups of four
    // characters (0 or less: one line). Writes no terminator.
    // Output size: getSize(length), plus one per line feed (length / 3 / groupsPerLine).
    // @return the characters written; 0 for a length below 1.
    static int encode(const unsigned char* input, char* output, int length, int groupsPerLine);
    // Decodes `length` characters; characters outside the alphabet are skipped anywhere, a group
    // with "=" in its fourth place ends the text. Each group takes at least four characters and
    // gives at most three bytes, so an output of 3 * (length / 4) bytes is always enough.
    // @return the bytes written, or -1 for a text that ends inside a group.
    static int decode(const char* input, unsigned char* output, int length);
    // Removes in place every character that is neither of the alphabet nor "=". @return the
    // new length.
    static int strip(char* text, int length);

    static constexpr int kPad = 80;
    static constexpr int kNoise = 100;
};
