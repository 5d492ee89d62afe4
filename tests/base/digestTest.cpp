// Digests and Base64 as the XML files and the hosts see them: the standards' vectors, agreement
// with OpenSSL on random data however it arrives, and decoding of any text inside its bounds.
#include "KorelEdit.h"
#include "base/base64.h"
#include "base/md5.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string hex(const uint8_t* bytes)
{
    char text[33];
    for (int i = 0; i < 16; ++i)
        snprintf(text + 2 * i, 3, "%02x", bytes[i]);
    return text;
}

TEST(Md5, DigestsTheStandardsVectorsStartingOverOnEachCallAndOrdersThem)
{
    const char* rows[][2] = {{"", "d41d8cd98f00b204e9800998ecf8427e"}, {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"}, {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
            "57edf4a22be3c955ac49da2e2107b67a"}};
    Md5 md5;
    for (int pass = 0; pass < 2; ++pass)
        for (const auto& [text, digest] : rows) {
            const Md5Hash hash = md5.getMd5(reinterpret_cast<const uint8_t*>(text), strlen(text));
            const std::unique_ptr<const uint8_t[]> raw(md5.raw_digest());
            EXPECT_TRUE(hex(hash.bytes) == digest && md5.hex_digest() == digest && hex(raw.get()) == digest) << text;
        }
    // Sorted maps keyed by digests order them as unsigned bytes from the first.
    Md5Hash low = {{0x7f, 0xff}}, high = {{0x80, 0x00}}, higher = {{0x80, 0x01}};
    EXPECT_TRUE(low < high && high < higher && low < higher && !(high < low || higher < high || high < high));
}

// 10,000 inputs of 0 to 4096 bytes: whole, in random pieces, by stream, by FILE*, and exported.
TEST(Md5, AgreesWithOpenSslOnRandomDataHoweverItArrives)
{
    std::mt19937 random(7);
    for (int i = 0; i < 10000; ++i) {
        std::string data(random() % 4097, '\0');
        std::generate(data.begin(), data.end(), std::ref(random));
        const auto* bytes = reinterpret_cast<const uint8_t*>(data.data());
        const unsigned size = data.size();
        uint8_t reference[16];
        EVP_Digest(bytes, size, reference, nullptr, EVP_md5(), nullptr);
        const std::string expected = hex(reference);
        Md5 whole, pieces;
        ASSERT_EQ(hex(whole.getMd5(bytes, size).bytes), expected) << size;
        for (unsigned at = 0, n; at < size; at += n)
            pieces.update(bytes + at, n = std::min<unsigned>(random() % 150, size - at));
        pieces.finalize();
        std::istringstream stream(data);
        ASSERT_TRUE(pieces.hex_digest() == expected && Md5(stream).hex_digest() == expected) << size;
        ASSERT_EQ(Md5(fmemopen(data.data(), size, "r")).hex_digest(), expected) << size;
        // The exported functions leave the file open.
        FILE* file = fmemopen(data.data(), size, "r");
        char text[33];
        ASSERT_TRUE(getMd5(file, text) == 0 && text == expected && fseek(file, 0, SEEK_SET) == 0) << size;
        ASSERT_TRUE(filesMatch(file, expected.c_str()) == 1 && fclose(file) == 0) << size;
    }
}

// Misuse, and no file, change nothing.
TEST(Md5, MisuseIsReportedWordForWordAndChangesNothing)
{
    const uint8_t abc[] = {'a', 'b', 'c'};
    Md5 md5;
    testing::internal::CaptureStderr();
    EXPECT_TRUE(*md5.raw_digest() == 0 && md5.hex_digest().empty());
    md5.getMd5(abc, 3);
    md5.update(abc, 3);
    md5.finalize();
    EXPECT_EQ(md5.hex_digest(), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Md5::raw_digest:  Can't get digest if you haven't finalized the digest!\n"
              "Md5::hex_digest:  Can't get digest if you haven't finalized the digest!\n"
              "Md5::update:  Can't update a finalized digest!\n"
              "Md5::finalize:  Already finalized this digest!\n");
    char text[33] = "x";
    EXPECT_TRUE(getMd5(nullptr, text) == -1 && !*text && !filesMatch(nullptr, text));
}

TEST(Base64, EncodesAndDecodesTheStandardsVectorsAndNoisyText)
{
    const char* rows[][2] = {{"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}};
    for (const auto& [plain, code] : rows) {
        const int n = strlen(plain);
        char text[16] = {}; unsigned char back[16] = {};
        EXPECT_EQ(Base64::encode(reinterpret_cast<const unsigned char*>(plain), text, n, 0), Base64::getSize(n));
        EXPECT_EQ(Base64::decode(code, back, strlen(code)), n) << code;
        EXPECT_TRUE(!strcmp(text, code) && !strcmp(reinterpret_cast<char*>(back), plain)) << code;
    }
    for (const auto& [n, size] : {std::pair{0, 0}, {1, 4}, {3, 4}, {128, 172}, {-3, 0}})
        EXPECT_EQ(Base64::getSize(n), size) << n;
    char lines[16] = {}, noisy[] = " Zm 9v\n==\t";
    EXPECT_EQ(Base64::encode(reinterpret_cast<const unsigned char*>("foobar"), lines, 6, 1), 10);
    EXPECT_STREQ(lines, "Zm9v\nYmFy\n");
    EXPECT_EQ(std::string(noisy, Base64::strip(noisy, sizeof noisy - 1)), "Zm9v==");
    // Noise is skipped anywhere; a text cut inside a group fails, a short group ends the text.
    const std::pair<std::string, int> decoded[] = {{"YW\nJj", 3}, {"YWJ", 0}, {"Zg==Zg==", 1},
        {"Zm9v\n\n\n\n", -1}, {"Zm9vYm=\n", -1}, {"=AAAZg==", 1}};
    for (const auto& [code, n] : decoded)
        EXPECT_EQ(Base64::decode(code.data(), reinterpret_cast<unsigned char*>(lines), code.size()), n) << code;
}

// Any text decodes into 3 bytes per 4 characters and no further, reading none past its length
// (exact-size buffers, for the sanitizer); what was encoded, at any line length, decodes back.
TEST(Base64, DecodesAnyTextInsideItsBoundsAndInvertsEncoding)
{
    std::mt19937 random(11);
    for (int i = 0; i < 3000; ++i) {
        std::vector<char> text(random() % 40);
        std::generate(text.begin(), text.end(), [&] { return "AZaz09+/=\n \x80Q"[random() % 13]; });
        std::vector<unsigned char> out(3 * (text.size() / 4));
        const int got = Base64::decode(text.data(), out.data(), text.size());
        ASSERT_TRUE(got >= -1 && got <= static_cast<int>(out.size())) << got;
        std::vector<unsigned char> plain(random() % 300);
        std::generate(plain.begin(), plain.end(), std::ref(random));
        const int perLine = random() % 4, n = plain.size();
        std::vector<char> code(Base64::getSize(n) + (perLine ? n / 3 / perLine : 0));
        ASSERT_EQ(Base64::encode(plain.data(), code.data(), n, perLine), static_cast<int>(code.size()));
        std::vector<unsigned char> back(3 * (code.size() / 4));
        ASSERT_EQ(Base64::decode(code.data(), back.data(), code.size()), n);
        ASSERT_TRUE(std::equal(plain.begin(), plain.end(), back.begin()));
    }
}

} // namespace
