// The command ring against its model: long random runs from a fixed seed, with every byte of the
// object compared after every step.
#include <gtest/gtest.h>

#include <random>

#include "tests/support/RingExercise.h"

namespace vantric_test {
namespace {

using Kind = RingOperation::Kind;
using Weights = std::vector<double>;  // in the order of the kinds

constexpr int steps = 8000;

// What a run draws its operations from.
struct Mix {
    Weights weights;
    std::size_t largestPayload;
    std::size_t smallestBuffer;
    std::size_t largestBuffer;
};

class RandomRun {
  public:
    explicit RandomRun(const Mix& mix)
        : mix_(mix), kinds_(mix.weights.begin(), mix.weights.end()) {}

    RingOperation next() {
        RingOperation operation;
        operation.kind = static_cast<Kind>(kinds_(random_));
        operation.object = below(RingExercise::mostPerRole);
        operation.command =
            below(4) == 0 ? static_cast<uint32_t>(random_()) : static_cast<uint32_t>(below(16));
        operation.size = operation.kind == Kind::Enqueue
                             ? between(0, mix_.largestPayload)
                             : between(mix_.smallestBuffer, mix_.largestBuffer);
        operation.content = content();
        return operation;
    }

  private:
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_()) % limit; }

    std::size_t between(std::size_t smallest, std::size_t largest) {
        return smallest + below(largest - smallest + 1);
    }

    // Mostly small words, which make sense when they are taken for headers.
    Bytes content() {
        Bytes bytes;
        for (std::size_t left = below(12); left > 0; --left) {
            appendWord(bytes, static_cast<uint32_t>(below(8) == 0 ? random_() : below(40)));
        }
        bytes.resize(bytes.size() + below(4), 0xA5);
        return bytes;
    }

    const Mix& mix_;
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): every run is to take the same steps
    std::mt19937_64 random_{1};
    std::discrete_distribution<int> kinds_;
};

// Runs to the end or to the first difference, whose step it names.
RingModel::Occurrences expectNoDifference(const Mix& mix) {
    RandomRun run(mix);
    RingExercise exercise;
    std::string difference;
    for (const Kind kind : {Kind::AttachProducer, Kind::AttachConsumer}) {
        RingOperation attachment;
        attachment.kind = kind;
        EXPECT_EQ(exercise.perform(attachment), "");
    }
    for (int step = 0; step < steps && difference.empty(); ++step) {
        const RingOperation operation = run.next();
        difference = exercise.perform(operation);
        EXPECT_EQ(difference, "") << "step " << step << ", operation "
                                  << static_cast<int>(operation.kind);
    }
    return exercise.model().occurrences();
}

// Weights: attach producer, consumer; detach producer, consumer; enqueue, fill up; dequeue, without
// buffer, without size.

TEST(RingModel, holdsForSmallFramesThatAreReadAsTheyCome) {
    const auto seen = expectNoDifference({{0, 0, 0, 0, 10, 0, 9, 0, 0}, 100, 4088, 5000});
    EXPECT_GT(seen.dequeuedFrames, 1000U);
    EXPECT_GT(seen.splitFrames, 10U);
}

TEST(RingModel, holdsForFramesThatFillTheRing) {
    const auto seen = expectNoDifference({{0, 0, 0, 0, 8, 2, 9, 0, 0}, 1500, 4088, 5000});
    EXPECT_GT(seen.filledRings, 100U);
    EXPECT_GT(seen.droppedFrames, 100U);
    EXPECT_GT(seen.splitFrames, 100U);
}

TEST(RingModel, holdsWhileHeadersAreLostAndPayloadsTakenForHeaders) {
    const auto seen = expectNoDifference({{0, 0, 0, 0, 8, 0, 30, 3, 3}, 60, 0, 20});
    EXPECT_GT(seen.lostHeaders, 500U);
    EXPECT_GT(seen.partialHeaders, 50U);
    EXPECT_GT(seen.dequeuedFrames, 200U);
}

TEST(RingModel, holdsWhileBothSidesComeAndGo) {
    const auto seen = expectNoDifference({{4, 4, 5, 5, 8, 1, 8, 1, 1}, 600, 0, 600});
    EXPECT_GT(seen.setUps, 100U);
    EXPECT_GT(seen.removals, 100U);
    EXPECT_GT(seen.dequeuedFrames, 100U);
}

}  // namespace
}  // namespace vantric_test
