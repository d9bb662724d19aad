// What a simulated download board does with the chips in its socket.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "board_storage.h"
#include "simulators/board_job.h"
#include "simulators/board_programmer.h"
#include "simulators/simulated_chip.h"

namespace vkm::test {
namespace {

using namespace std::chrono_literals;
using sim::BoardProgramming;
using sim::ChipConfig;
using sim::SimulatedChip;

ChipConfig chip_of(std::string model) {
    ChipConfig config;
    config.model = std::move(model);
    config.powered_at = sim::never;
    return config;
}

// A job for a chip of family 2.
constexpr const char* model_2 = "VKM47H58RK+";
BoardStorage storage_2(const Bytes& code) {
    BoardStorage storage(model_2, code);
    storage.put(0x20, 0xF108, 2);
    storage.put(0x31, 0xFD, 1);
    storage.put(0xD0, 0xF7FF, 3);
    storage.seal();
    return storage;
}

struct Socket {
    explicit Socket(ChipConfig config) : chip(std::move(config)) {}
    explicit Socket(const char* model) : Socket(chip_of(model)) {}

    BoardProgramming program(BoardStorage& storage) {
        const BoardProgramming result = sim::program_chip(storage.bytes, chip, now);
        now = result.end + 1s;
        return result;
    }
    void next_chip() { chip.replace(now); }
    Bytes flash(std::size_t first, std::size_t count) const {
        const auto part = chip.flash().subspan(first, count);
        return {part.begin(), part.end()};
    }

    SimulatedChip chip;
    sim::Instant now{1s};
};

// The flash holds the code and nothing else.
void expect_code(const Socket& socket, const Bytes& code) {
    ASSERT_LE(code.size(), socket.chip.flash().size());
    EXPECT_TRUE(socket.flash(0, code.size()) == code);
    const Bytes rest = socket.flash(code.size(), socket.chip.flash().size() - code.size());
    EXPECT_TRUE(rest == Bytes(rest.size(), 0xFF));
}

std::string problem_of(const BoardStorage& storage) {
    return sim::read_board_job(storage.bytes).problem;
}

// ---- a chip of each kind --------------------------------------------------------------------

TEST(BoardProgrammer, ProgramsAChipOfFamily2WithItsOption) {
    const Bytes code = some_code(0x1234);
    BoardStorage storage = storage_2(code);
    storage.put(0x31, 0xF9, 1);
    storage.seal();
    Socket socket(model_2);
    const BoardProgramming result = socket.program(storage);
    EXPECT_EQ(result.problem, "");
    EXPECT_TRUE(result.done);
    EXPECT_TRUE(result.options_written);
    EXPECT_EQ(result.chips_left, 4U);
    EXPECT_EQ(result.blocks, 0x1234 / 128 + 1);
    EXPECT_EQ(result.retries, 0);
    expect_code(socket, code);
    EXPECT_EQ(socket.chip.options()[1], 0xF9);
    EXPECT_TRUE(socket.chip.faults().empty());
    EXPECT_EQ(socket.chip.counters().starts, 1);
    EXPECT_EQ(socket.chip.state(), sim::ChipState::off);
}

TEST(BoardProgrammer, ProgramsAChipOfFamily0WithoutIdAndOption) {
    const Bytes code = some_code(0x2080);
    BoardStorage storage("VKM47H58RK", code);
    storage.put(0x20, 0xFFFF, 2);
    storage.put(0x96, 0x0080, 2);
    storage.seal();
    Socket socket("VKM47H58RK");
    const auto options = socket.chip.options();
    const BoardProgramming result = socket.program(storage);
    EXPECT_EQ(result.problem, "");
    EXPECT_FALSE(result.options_written);
    expect_code(socket, code);
    EXPECT_EQ(socket.chip.options(), options);
    EXPECT_TRUE(socket.chip.faults().empty());
}

TEST(BoardProgrammer, ProgramsAChipOfFamily1ByItsOneByteOfId) {
    const Bytes code = some_code(0x1000);
    BoardStorage storage("VKM47W58AD", code);
    storage.put(0x20, 0x5858, 2);
    storage.seal();
    Socket socket("VKM47W58AD");
    EXPECT_EQ(socket.program(storage).problem, "");
    expect_code(socket, code);
    EXPECT_TRUE(socket.chip.faults().empty());
    Socket other("VKM47W54AD");
    EXPECT_EQ(other.program(storage).problem, "the chip is another one");
}

struct ClockedModel {
    const char* model;
    unsigned id;
    unsigned data_end;
    unsigned source;  // option word that chooses the clock
};

class BoardProgrammerWithClock : public testing::TestWithParam<ClockedModel> {};

TEST_P(BoardProgrammerWithClock, WritesTheOptionsThatItWasTold) {
    const auto& [model, id, data_end, source] = GetParam();
    for (const unsigned clock_bit : {0x02U, 0x00U}) {  // crystal, its own oscillator
        const Bytes code = some_code(0x1100);
        BoardStorage storage(model, code);
        storage.put(0x20, id, 2);
        const auto word = [&](unsigned number, unsigned value) {
            return number == source ? (value & ~2U) | clock_bit : value;
        };
        storage.put(0x30, word(2, 0xFD), 1);
        storage.put(0x31, word(3, 0xFC), 1);
        storage.put(0x32, 0xF5, 1);
        storage.put(0x33, 0xFA, 1);
        storage.put(0x34, 0xEE, 1);
        storage.put(0xD0, data_end, 3);
        storage.seal();
        Socket socket(model);
        const auto before = socket.chip.options();
        EXPECT_EQ(socket.program(storage).problem, "");
        expect_code(socket, code);
        const auto& after = socket.chip.options();
        const auto has = [&](int number) {
            const auto numbers = socket.chip.option_numbers();
            return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
        };
        if (has(2)) {
            EXPECT_EQ(after[2], word(2, 0xFD));
        }
        EXPECT_EQ(after[3], word(3, 0xFC));
        EXPECT_EQ(after[8], 0xF5);
        EXPECT_EQ(after[10], 0xFA);
        EXPECT_EQ(after[11], 0xEE);
        EXPECT_EQ(after[0], before[0]);
        EXPECT_EQ(after[4], before[4]);
        EXPECT_TRUE(socket.chip.faults().empty()) << socket.chip.faults().front();
    }
}

INSTANTIATE_TEST_SUITE_P(Families, BoardProgrammerWithClock,
                         testing::Values(ClockedModel{"VKM26H5052", 0xF205, 0x13FF, 2},
                                         ClockedModel{"VKM26H5428AD", 0xE07C, 0x6FFF, 2},
                                         ClockedModel{"VKM27J032PCA", 0xF418, 0xEFFF, 3}));

TEST(BoardProgrammer, LeavesTheWordsThatItWasNotToldAsTheChipHasThem) {
    BoardStorage storage("VKM27J032PCA", some_code(100));
    storage.put(0x20, 0xF418, 2);
    storage.put(0x32, 0xF7, 1);
    storage.seal();
    ChipConfig config = chip_of("VKM27J032PCA");
    sim::OptionBytes options;
    options.fill(0xFF);
    options[0] = 0x5A;
    options[4] = 0xA5;
    config.options = options;
    Socket socket(config);
    EXPECT_EQ(socket.program(storage).problem, "");
    EXPECT_EQ(socket.chip.options()[0], 0x5A);
    EXPECT_EQ(socket.chip.options()[4], 0xA5);
    EXPECT_EQ(socket.chip.options()[8], 0xF7);
}

TEST(BoardProgrammer, TakesEitherIdOfAChipAndNoOther) {
    const Bytes code = some_code(100);
    BoardStorage storage("VKM26H5408AD", code);
    storage.put(0x20, 0xE068, 2);
    storage.put(0x22, 0xF318, 2);
    storage.put(0x32, 0xF7, 1);
    storage.put(0xD0, 0x49FF, 3);
    storage.seal();
    for (const char letter : {'E', 'F'}) {
        ChipConfig config = chip_of("VKM26H5408AD");
        config.letter = letter;
        Socket socket(config);
        EXPECT_EQ(socket.program(storage).problem, "") << letter;
        expect_code(socket, code);
        EXPECT_TRUE(socket.chip.faults().empty());
    }
    storage.put(0x22, 0, 2);
    storage.seal();
    ChipConfig config = chip_of("VKM26H5408AD");
    config.letter = 'E';
    Socket socket(config);
    const Bytes before = storage.bytes;
    const BoardProgramming result = socket.program(storage);
    EXPECT_FALSE(result.done);
    EXPECT_EQ(result.problem, "the chip is another one");
    EXPECT_EQ(socket.chip.counters().erases, 0);
    EXPECT_TRUE(storage.bytes == before);
}

TEST(BoardProgrammer, TakesNoMissingIdForThatOfAChip) {
    BoardStorage storage = storage_2(some_code(100));
    ChipConfig config = chip_of(model_2);
    config.id = Bytes{0x00, 0x00};
    Socket socket(config);
    EXPECT_EQ(socket.program(storage).problem, "the chip is another one");
}

TEST(BoardProgrammer, SparesFirmwareWithoutAWatchdogOptionThatByte) {
    BoardStorage storage("VKM26H5052", some_code(100));
    storage.put(0x20, 0xF205, 2);
    storage.put(0x31, 0xFC, 1);
    storage.put(0x32, 0xF7, 1);
    storage.seal();
    ChipConfig config = chip_of("VKM26H5052");
    config.version = 0x36;
    Socket socket(config);
    EXPECT_EQ(socket.program(storage).problem, "");
    EXPECT_EQ(socket.chip.options()[3], 0xFF);
    EXPECT_TRUE(socket.chip.faults().empty());
}

// ---- its two parts of code ----------------------------------------------------------------

TEST(BoardProgrammer, FindsCodeThatReachesIntoTheSecondPart) {
    for (const std::size_t size : {0xAC00, 0xAC01, 0xB400, 0xCC00}) {
        const Bytes code = some_code(size);
        BoardStorage storage = storage_2(code);
        Socket socket(model_2);
        EXPECT_EQ(socket.program(storage).problem, "") << size;
        expect_code(socket, code);
    }
}

TEST(BoardProgrammer, HasNoRoomForMoreCode) {
    BoardStorage storage = storage_2(some_code(0xCC00));
    storage.put(0x70, 0xCC00, 3);
    storage.seal();
    EXPECT_EQ(problem_of(storage), "the code doesn't fit the board");
}

TEST(BoardProgrammer, KnowsThatTheSecondPartWasNeverLoaded) {
    BoardStorage storage = storage_2(some_code(0xB400));
    std::fill(storage.bytes.begin() + 0x2000, storage.bytes.begin() + 0x4000, 0xFF);
    EXPECT_EQ(problem_of(storage), "the second part of the code was never loaded");
    storage.put(0x70, 0xABFF, 3);
    storage.seal();
    EXPECT_EQ(problem_of(storage), "");
}

// ---- what is wrong with the storage -------------------------------------------------------

TEST(BoardProgrammer, ComparesTheCodeWithTheTableOfItsCrcs) {
    const BoardStorage good = storage_2(some_code(0x1234));
    EXPECT_EQ(problem_of(good), "");
    BoardStorage wrong = good;
    wrong.bytes[0x4000 + 0x1233] ^= 0x10;
    EXPECT_EQ(problem_of(wrong), "the CRC of the code is wrong at 1200");
    wrong = good;
    wrong.bytes[0xF002] ^= 0x10;
    EXPECT_EQ(problem_of(wrong), "the CRC of the code is wrong at 0080");
    wrong = good;
    std::swap(wrong.bytes[0xF000], wrong.bytes[0xF001]);
    EXPECT_EQ(problem_of(wrong), "the CRC of the code is wrong at 0000");
    Socket socket(model_2);
    EXPECT_FALSE(socket.program(wrong).done);
    EXPECT_EQ(socket.chip.counters().power_ups, 0);
    EXPECT_EQ(sim::chips_left(wrong.bytes), 5U);
}

TEST(BoardProgrammer, RefusesParametersThatAreWrong) {
    const BoardStorage good = storage_2(some_code(100));
    BoardStorage wrong = good;
    wrong.bytes[0xEC78] ^= 1;
    EXPECT_EQ(problem_of(wrong), "the CRC of the parameters is wrong");
    wrong = good;
    wrong.put(0x00, 'X', 1);
    wrong.seal();
    EXPECT_EQ(problem_of(wrong), "there is no chip XKM47H58RK+");
    wrong = good;
    wrong.put(0x96, 0x0100, 2);
    wrong.seal();
    EXPECT_EQ(problem_of(wrong), "there is no such block size");
    EXPECT_NE(problem_of(BoardStorage("", {0})), "");
}

// ---- the limit -----------------------------------------------------------------------------

TEST(BoardLimit, IsCountedByBits) {
    for (const unsigned chips : {0U, 1U, 7U, 8U, 9U, 2047U, 2048U, 2049U, 4096U, 123456U}) {
        BoardStorage storage = storage_2(some_code(1));
        storage.set_limit(chips);
        EXPECT_EQ(sim::chips_left(storage.bytes), chips);
        EXPECT_EQ(sim::count_chip(storage.bytes), chips > 0);
        BoardStorage one_less = storage;
        one_less.set_limit(chips > 0 ? chips - 1 : 0);
        storage.put(0x90, 0, 4);
        one_less.put(0x90, 0, 4);
        EXPECT_TRUE(storage.bytes == one_less.bytes) << chips;
    }
}

TEST(BoardLimit, LetsSoManyChipsThrough) {
    BoardStorage storage = storage_2(some_code(100));
    storage.set_limit(2);
    storage.seal();
    Socket socket(model_2);
    EXPECT_EQ(socket.program(storage).chips_left, 1U);
    socket.next_chip();
    EXPECT_TRUE(socket.program(storage).done);
    socket.next_chip();
    const BoardProgramming third = socket.program(storage);
    EXPECT_FALSE(third.done);
    EXPECT_EQ(third.problem, "the production limit is used up");
    EXPECT_EQ(socket.flash(0, 1), Bytes{0xFF});
}

TEST(BoardLimit, CountsNoChipThatFailed) {
    BoardStorage storage = storage_2(some_code(100));
    ChipConfig config = chip_of(model_2);
    config.faults = {sim::parse_fault("lose_frame@erase:1*0").value()};
    Socket socket(config);
    const BoardProgramming result = socket.program(storage);
    EXPECT_EQ(result.problem, "the chip can't be erased");
    EXPECT_EQ(result.chips_left, 5U);
}

TEST(BoardLimit, IsNeverMoreThanWasAllowed) {
    BoardStorage storage = storage_2(some_code(100));
    storage.put(0x90, 4, 4);
    storage.seal();
    EXPECT_EQ(problem_of(storage), "more chips are left than were allowed");
}

// ---- numbers -------------------------------------------------------------------------------

// What three chips get at these addresses.
std::vector<Bytes> three_numbers(BoardStorage storage, std::size_t address, std::size_t count) {
    storage.seal();
    Socket socket(model_2);
    std::vector<Bytes> numbers;
    for (int chip = 0; chip < 3; ++chip) {
        EXPECT_EQ(socket.program(storage).problem, "");
        numbers.push_back(socket.flash(address, count));
        socket.next_chip();
    }
    return numbers;
}

Bytes code_with(std::size_t address, const Bytes& number) {
    Bytes code = some_code(0x300);
    std::copy(number.begin(), number.end(), code.begin() + static_cast<std::ptrdiff_t>(address));
    return code;
}

TEST(BoardNumbers, CountUpFromTheSecondChipOn) {
    BoardStorage storage = storage_2(code_with(0x110, {0x00, 0xFE, 0xFF}));
    storage.number(0x110, 3, 0x110, 0, 2, 0);
    EXPECT_EQ(three_numbers(storage, 0x110, 3),
              (std::vector<Bytes>{{0x00, 0xFE, 0xFF}, {0x00, 0xFF, 0x01}, {0x00, 0xFF, 0x03}}));
}

TEST(BoardNumbers, CountInPackedDecimalsAndInDigits) {
    BoardStorage packed = storage_2(code_with(0x110, {0x99, 0x97}));
    packed.number(0x110, 2, 0x110, 0, 2, 1);
    EXPECT_EQ(three_numbers(packed, 0x110, 2),
              (std::vector<Bytes>{{0x99, 0x97}, {0x99, 0x99}, {0x00, 0x01}}));
    BoardStorage digits = storage_2(code_with(0x110, {'0', '9', '5'}));
    digits.number(0x110, 3, 0x110, 0, 107, 2);
    EXPECT_EQ(three_numbers(digits, 0x110, 3),
              (std::vector<Bytes>{{'0', '9', '5'}, {'2', '0', '2'}, {'3', '0', '9'}}));
}

TEST(BoardNumbers, ReachOverABoundary) {
    BoardStorage storage = storage_2(code_with(0x17E, {0x01, 0xFF, 0xFF, 0xFF}));
    storage.number(0x17E, 2, 0x180, 2, 1, 0);
    EXPECT_EQ(three_numbers(storage, 0x17E, 4),
              (std::vector<Bytes>{
                  {0x01, 0xFF, 0xFF, 0xFF}, {0x02, 0x00, 0x00, 0x00}, {0x02, 0x00, 0x00, 0x01}}));
}

TEST(BoardNumbers, StayWhereTheyAreNotWanted) {
    BoardStorage storage = storage_2(code_with(0x110, {0x01}));
    storage.number(0x110, 1, 0x110, 0, 1, 0);
    storage.put(0x80, 0, 1);
    EXPECT_EQ(three_numbers(storage, 0x110, 1), (std::vector<Bytes>{{1}, {1}, {1}}));
}

TEST(BoardNumbers, StandInsideTheCode) {
    BoardStorage storage = storage_2(some_code(0x300));
    storage.number(0x2FF, 1, 0x300, 1, 1, 0);
    storage.seal();
    EXPECT_EQ(problem_of(storage), "the number stands outside the code");
    storage.number(0x2FE, 2, 0x2FE, 0, 1, 3);
    storage.seal();
    EXPECT_EQ(problem_of(storage), "there is no such numeral");
}

// ---- a chip that makes trouble ---------------------------------------------------------------

TEST(BoardProgrammer, TriesABlockAgainFromItsBeginning) {
    for (const char* fault : {"lose_reply@block:3", "wrong_data_sum@block:6",
                              "lose_frame@block:2*2", "other_code@block:8=143"}) {
        const Bytes code = some_code(0x500);
        BoardStorage storage = storage_2(code);
        ChipConfig config = chip_of(model_2);
        config.faults = {sim::parse_fault(fault).value()};
        Socket socket(config);
        const BoardProgramming result = socket.program(storage);
        EXPECT_EQ(result.problem, "") << fault;
        EXPECT_GE(result.retries, 1) << fault;
        EXPECT_GE(socket.chip.counters().retried_blocks, 1) << fault;
        expect_code(socket, code);
        EXPECT_TRUE(socket.chip.faults().empty()) << fault;
    }
}

TEST(BoardProgrammer, AsksABusyChipAgainForItsOptions) {
    BoardStorage storage("VKM26H5052", some_code(100));
    storage.put(0x20, 0xF205, 2);
    storage.put(0x32, 0xF7, 1);
    storage.seal();
    ChipConfig config = chip_of("VKM26H5052");
    config.option_busy = 3;
    Socket socket(config);
    EXPECT_EQ(socket.program(storage).problem, "");
    EXPECT_EQ(socket.chip.counters().option_writes, 1);
    config.option_busy = -1;
    Socket busy(config);
    EXPECT_EQ(busy.program(storage).problem, "the options can't be written");
}

TEST(BoardProgrammer, TellsWhereItCameToAnEnd) {
    const std::pair<const char*, const char*> ends[] = {
        {"lose_frame@status:1*0", "the chip doesn't answer"},
        {"lose_frame@link_check:1*0", "the chip doesn't answer the link check"},
        {"other_code@erase=143", "the chip can't be erased"},
        {"lose_reply@block:1*0", "the chip can't be programmed"},
        {"other_code@options:1*0=143", "the options can't be written"}};
    for (const auto& [fault, problem] : ends) {
        BoardStorage storage = storage_2(some_code(100));
        ChipConfig config = chip_of(model_2);
        config.faults = {sim::parse_fault(fault).value()};
        Socket socket(config);
        const BoardProgramming result = socket.program(storage);
        EXPECT_FALSE(result.done);
        EXPECT_EQ(result.problem, problem);
        EXPECT_EQ(result.chips_left, 5U);
    }
}

TEST(BoardProgrammer, ProgramsOverWhatTheChipHeld) {
    const Bytes code = some_code(0x1000, 2);
    BoardStorage storage = storage_2(code);
    Socket socket(model_2);
    socket.chip.load_flash(Bytes(0xF000, 0x00));
    EXPECT_EQ(socket.program(storage).problem, "");
    expect_code(socket, code);
}

}  // namespace
}  // namespace vkm::test
