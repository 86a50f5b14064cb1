#include <session/files/Sha256.h>

#include <QCryptographicHash>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace {
class Sha256Test : public ::testing::TestWithParam<Sha256::Instructions>
{
protected:
    static std::string digestOf(const std::string& text, std::size_t pieceSize)
    {
        Sha256 hash(GetParam());
        for (std::size_t i = 0; i < text.size(); i += pieceSize) {
            hash.add(text.data() + i, std::min(pieceSize, text.size() - i));
        }
        return hash.digest();
    }
};

INSTANTIATE_TEST_SUITE_P(Instructions, Sha256Test,
                         ::testing::Values(Sha256::Best, Sha256::Baseline),
                         [](const auto& parameter) {
                             return parameter.param == Sha256::Best ? "Best" : "Baseline";
                         });
} // namespace

TEST_P(Sha256Test, AnswersTheDigestsOfTheStandard)
{
    // NIST, FIPS 180-4, examples "SHA-256": one block, two blocks; and the empty message.
    EXPECT_EQ(digestOf("abc", 3),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digestOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 56),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(digestOf("", 1), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_P(Sha256Test, AgreesWithAnotherImplementationAtEveryLength)
{
    std::string text;
    for (int length = 0; length <= 300; ++length) {
        const QByteArray expected =
            QCryptographicHash::hash(QByteArray(text.data(), length), QCryptographicHash::Sha256);
        ASSERT_EQ(digestOf(text, 1000), expected.toHex().toStdString()) << length;
        text += static_cast<char>(37 * length + length / 7);
    }
}

TEST_P(Sha256Test, DoesNotCareWhereItsPiecesEnd)
{
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += static_cast<char>(i * i);
    }
    const std::string expected = digestOf(text, text.size());
    for (const std::size_t pieceSize : {1, 3, 63, 64, 65, 128, 200}) {
        EXPECT_EQ(digestOf(text, pieceSize), expected) << pieceSize;
    }
}
