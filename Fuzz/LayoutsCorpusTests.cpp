#include "Corpus.h"
#include "LayoutsTarget.h"

#include <gtest/gtest.h>

using namespace tilewright;

TEST(LayoutsCorpus, HoldsFilesOfBothKindsWhichAreToldApart) {
    corpus::expectToldApart(corpus::filesIn(TILEWRIGHT_CORPUS), checkLayoutsFile, 8, 20);
}

TEST(LayoutsCorpus, IsReadSafelyInAllWaysThatTheFuzzerFound) {
    const auto found = corpus::filesIn(TILEWRIGHT_CORPUS "-found");
    EXPECT_GE(found.size(), 300U);
    int valid = 0;
    for (const auto& [name, bytes] : found)
        valid += checkLayoutsFile(bytes) ? 1 : 0;
    EXPECT_GT(valid, 0);
    EXPECT_LT(valid, static_cast<int>(found.size()));
}

TEST(LayoutsCorpus, IsReadSafelyWhenCutOffAnywhere) {
    corpus::readCutOff(corpus::filesIn(TILEWRIGHT_CORPUS), checkLayoutsFile);
}

TEST(LayoutsCorpus, IsReadSafelyWithAnyOneByteSpoilt) {
    corpus::readSpoilt(corpus::filesIn(TILEWRIGHT_CORPUS), checkLayoutsFile);
}
