#include "CompanionTarget.h"
#include "Corpus.h"

#include <gtest/gtest.h>

using namespace tilewright;

TEST(CompanionCorpus, HoldsMessagesOfBothKindsWhichAreToldApart) {
    corpus::expectToldApart(corpus::filesIn(TILEWRIGHT_CORPUS), checkCompanionMessage, 12, 20);
}

TEST(CompanionCorpus, IsReadSafelyWhenCutOffAnywhere) {
    corpus::readCutOff(corpus::filesIn(TILEWRIGHT_CORPUS), checkCompanionMessage);
}

TEST(CompanionCorpus, IsReadSafelyWithAnyOneByteSpoilt) {
    corpus::readSpoilt(corpus::filesIn(TILEWRIGHT_CORPUS), checkCompanionMessage);
}
