#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/support/Allocations.h"
#include "tests/support/ErrorRecord.h"
#include "tests/support/FullAddressSpace.h"
#include "tests/support/Privileges.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"
#include "tests/support/TinySharedMemory.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider;

constexpr const char* name = "TestSegment";
constexpr uint32_t size = 61;
constexpr uint32_t pageSize = 4096;
constexpr int directoryInTheWay = EINVAL;  // as the C library reports EISDIR

std::string openError(int error) {
    return "Failed to open shared mem file, error: " + std::generic_category().message(error);
}

std::string mapError(int error) {
    return "Failed to map to shared memory, error: " + std::generic_category().message(error);
}

// The text of the runtime error that mapping ends in; empty when it succeeds.
std::string failureOf(SharedMemoryProvider& provider, uint32_t payloadSize,
                      const std::string& segment = name) {
    try {
        provider.map(payloadSize, segment);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

std::string failureOf(uint32_t payloadSize) {
    SharedMemoryProvider provider;
    return failureOf(provider, payloadSize);
}

// Maps one segment and prints the error's text. arguments: payload size
const RoleRegistration mapper("mapper", [](const std::vector<std::string>& arguments) {
    std::fputs(failureOf(static_cast<uint32_t>(std::stoul(arguments.at(0)))).c_str(), stdout);
    return 0;
});

// The same for a user that is nobody special.
const RoleRegistration foreigner("foreignMapper", [](const std::vector<std::string>& arguments) {
    if (!obeyFileModes()) {
        return 1;
    }
    std::fputs(failureOf(static_cast<uint32_t>(std::stoul(arguments.at(0)))).c_str(), stdout);
    return 0;
});

// Runs out of descriptors for as long as map() takes (what looks at the exception may need some).
const RoleRegistration exhausted("exhaustedMapper", [](const std::vector<std::string>& arguments) {
    const auto payloadSize = static_cast<uint32_t>(std::stoul(arguments.at(0)));
    SharedMemoryProvider provider;
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit noDescriptors = {3, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &noDescriptors);
    try {
        provider.map(payloadSize, name);
    } catch (const std::runtime_error& error) {
        setrlimit(RLIMIT_NOFILE, &limit);
        std::fputs(error.what(), stdout);
    }
    return 0;
});

// Maps with too full an address space, then with a sufficient one. Prints the error's text; the
// exit code names what was wrong afterwards.
const RoleRegistration cramped("crampedMapper", [](const std::vector<std::string>&) {
    constexpr uint32_t tooMuch = 32U << 20;
    SharedMemoryProvider provider;
    const std::size_t descriptors = openDescriptorCount();
    std::string failure;
    {
        const FullAddressSpace addressSpace(tooMuch);
        failure = failureOf(provider, tooMuch);
    }
    std::fputs(failure.c_str(), stdout);
    if (openDescriptorCount() != descriptors) {
        return 2;
    }
    if (segmentLength(name) != tooMuch + 4 || RawSegment(name).word(0) != 0) {
        return 3;
    }
    if (!failureOf(provider, size).empty() || RawSegment(name).word(0) != 1) {
        return 4;
    }
    return 0;
});

// Maps although the provider lock cannot be opened. arguments: none
const RoleRegistration lockless("locklessMapper", [](const std::vector<std::string>&) {
    SharedMemoryProvider provider;
    provider.map(size, name);
    return RawSegment(name).word(0) == 1 ? 0 : 1;
});

void expectFailureOfRole(const std::string& role, const std::string& failure) {
    const Result result = run(roleCommand(role, {std::to_string(size)}));
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->raw, 0) << result.errors;
    EXPECT_EQ(result.output, failure);
}

TEST(SharedMemoryProvider, aDirectoryInTheWayIsAnOpenFailure) {
    ASSERT_EQ(mkdir(segmentPath(name).c_str(), 0777), 0);
    EXPECT_EQ(failureOf(size), openError(directoryInTheWay));
}

TEST(SharedMemoryProvider, aNameThatCannotBeIsAnOpenFailure) {
    SharedMemoryProvider provider;
    EXPECT_EQ(failureOf(provider, size, "no/such/name"), openError(EINVAL));
}

TEST(SharedMemoryProvider, anObjectOfAnotherUserIsAnOpenFailure) {
    const RawSegment segment(name, size + 4);
    ASSERT_EQ(chmod(segmentPath(name).c_str(), 0), 0);
    expectFailureOfRole("foreignMapper", openError(EACCES));
    EXPECT_EQ(segment.word(0), 0U);
}

TEST(SharedMemoryProvider, aLackOfDescriptorsIsAnOpenFailure) {
    expectFailureOfRole("exhaustedMapper", openError(EMFILE));
    EXPECT_FALSE(segmentExists(name));
}

TEST(SharedMemoryProvider, anOpenFailureLeavesNoLockBehind) {
    ASSERT_EQ(mkdir(segmentPath(name).c_str(), 0777), 0);
    ASSERT_EQ(failureOf(size), openError(directoryInTheWay));
    EXPECT_FALSE(segmentExists("sem.TestSegmentProviderLock"));
}

TEST(SharedMemoryProvider, aLackOfAddressSpaceIsAMapFailureAfterWhichTheProviderStillWorks) {
    const Result result = run(roleCommand("crampedMapper"));
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->raw, 0) << result.errors;
    EXPECT_EQ(result.output, mapError(ENOMEM));
}

TEST(SharedMemoryProvider, aFullFileSystemIsAMapFailureAndNoSignal) {
    const TinySharedMemory tiny("4k");
    RawSegment filler("filler", pageSize);
    filler.writeWord(0, 1);
    expectFailureOfRole("mapper", mapError(ENOSPC));
    EXPECT_EQ(segmentLength(name), size + 4);
}

TEST(SharedMemoryProvider, anObjectThatHasNoBlocksYetFailsOnAFullFileSystemToo) {
    const TinySharedMemory tiny("4k");
    RawSegment filler("filler", pageSize);
    filler.writeWord(0, 1);
    ASSERT_EQ(truncate(segmentPath("filler").c_str(), pageSize), 0);
    const RawSegment sparse(name, size + 4);
    expectFailureOfRole("mapper", mapError(ENOSPC));
}

TEST(SharedMemoryProvider, aFullFileSystemLeavesTheProviderUsableAndTheCountUntouched) {
    const TinySharedMemory tiny("12k");
    auto filler = std::make_unique<RawSegment>("filler", std::size_t{3} * pageSize);
    filler->write(0, Bytes(std::size_t{3} * pageSize, 1));
    const std::size_t descriptors = openDescriptorCount();
    SharedMemoryProvider provider;
    ASSERT_EQ(failureOf(provider, size), mapError(ENOSPC));
    EXPECT_EQ(openDescriptorCount(), descriptors);
    EXPECT_FALSE(isMapped(segmentInode(name)));

    filler.reset();
    std::filesystem::remove(segmentPath("filler"));
    EXPECT_EQ(RawSegment(name).word(0), 0U);
    EXPECT_EQ(failureOf(provider, size), "");
    EXPECT_EQ(RawSegment(name).word(0), 1U);
}

TEST(SharedMemoryProvider, aSegmentThatFailedIsNotRemovedLater) {
    {
        const TinySharedMemory tiny("4k");
        RawSegment filler("filler", pageSize);
        filler.writeWord(0, 1);
        {
            SharedMemoryProvider provider;
            ASSERT_EQ(failureOf(provider, size), mapError(ENOSPC));
        }
        EXPECT_TRUE(segmentExists(name));
    }
}

TEST(SharedMemoryProvider, aLengthBeyondTheCountersRangeIsAMapFailure) {
    SharedMemoryProvider provider;
    for (uint32_t hugeSize = UINT32_MAX; hugeSize >= UINT32_MAX - 3; --hugeSize) {
        EXPECT_EQ(failureOf(provider, hugeSize), mapError(EOVERFLOW));
    }
    EXPECT_EQ(failureOf(provider, size), "");
}

TEST(SharedMemoryProvider, aFailureDoesNotTouchWhatIsMappedAlready) {
    SharedMemoryProvider provider;
    provider.map(size, name);
    ASSERT_EQ(mkdir(segmentPath("OtherSegment").c_str(), 0777), 0);
    ASSERT_EQ(failureOf(provider, size, "OtherSegment"), openError(directoryInTheWay));
    EXPECT_EQ(RawSegment(name).word(0), 1U);
    EXPECT_TRUE(isMapped(segmentInode(name)));
}

TEST(SharedMemoryProvider, aLockThatCannotBeOpenedIsLoggedAndTheSegmentMappedAllTheSame) {
    ASSERT_EQ(mkdir(segmentPath("sem.TestSegmentProviderLock").c_str(), 0777), 0);
    const Result result = run(roleCommand("locklessMapper", {}, errorsOnConsole()));
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->raw, 0) << result.errors;
    EXPECT_TRUE(isOneErrorRecord(result.output, "MultiProcessLock", 56,
                                 "MultiProcessLock: sem_open failed"));
    EXPECT_FALSE(segmentExists(name));
}

TEST(SharedMemoryProvider, runningOutOfMemoryAnywhereLeavesTheProviderAsItWas) {
    SharedMemoryProvider provider;
    provider.map(size, "EarlierSegment");
    const std::string segment = "SegmentWithANameTooLongForTheInlineBufferOfAString";
    const std::size_t descriptors = openDescriptorCount();
    const auto mapFailingAt = [&](std::size_t allocation) {
        const Allocations failing(allocation);
        try {
            provider.map(size, segment);
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    };
    std::size_t allocation = 1;
    while (mapFailingAt(allocation)) {
        EXPECT_EQ(RawSegment(segment).word(0), 0U) << allocation;
        EXPECT_FALSE(isMapped(segmentInode(segment))) << allocation;
        EXPECT_EQ(openDescriptorCount(), descriptors) << allocation;
        ++allocation;
    }
    EXPECT_GT(allocation, 3U);
    EXPECT_EQ(RawSegment(segment).word(0), 1U);
    EXPECT_EQ(RawSegment("EarlierSegment").word(0), 1U);
}

}  // namespace
}  // namespace vantric_test
