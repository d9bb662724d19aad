// A series of numbered chips on a bench whose tool dies again and again: at any moment
// of its time, between two bytes on the wire, before and after anything that it puts
// on the disk. What it has flushed survives, and the chip in its socket. Two chips
// with one number, or a number without a chip, must never come of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "session_bench.h"
#include "text/numbers.h"
#include "window/wiring.h"

namespace vkm::test {
namespace {

struct Killed {};

constexpr int chips_wanted = 200;
constexpr std::size_t number_at = 0x1FF;  // in either image
const std::pair<std::string, std::string> count_key = {"Settings", "Write_OK_Count"};

enum class Flush { count_before, count_after, behind_before, behind_after };

// How a life of the tool ends; the first that comes.
struct Death {
    std::optional<int> ms;            // after its start
    std::optional<int> byte;          // the nth that the chip hears
    std::optional<int> before_flush;  // the nth
    std::optional<int> after_flush;
    std::optional<Flush> behind_chip;  // one of the flushes behind the nth good chip
    int nth_chip = 1;
};

struct Job {
    std::string model;
    int numeral = 1;
    int length = 4;
    int increase = 1;
    bool data_too = false;  // a number of its own in the data file
};

// What outlives the tool.
struct Workshop {
    MemorySettings::Values store;
    Bytes flash;   // of the chip in the socket; empty: a blank one
    int good = 0;  // chips put away
    std::vector<Bytes> shelf;
    int highest_count = 0;
    std::map<std::string, int> killed_in;
    int kills = 0;
};

int count_in(const MemorySettings::Values& values) {
    const auto found = values.find(count_key);
    return found == values.end() ? 0 : leading_integer(found->second);
}

// One life of the tool, with its operator.
class Life {
  public:
    Life(Workshop& shop, const Job& job, const Death& death)
        : shop_(shop),
          job_(job),
          death_(death),
          bench_({.model = job.model, .powered_at = sim::never}, [&](VirtualBench& bench) {
              bench.settings.values = shop.store;
              bench.settings.on_disk = shop.store;
          }) {
        if (!shop.flash.empty()) bench_.chip.load_flash(shop.flash);
        arm();
    }

    void live() {
        try {
            work();
        } catch (const Killed&) {
            ++shop_.kills;
            ++shop_.killed_in[phase()];
        }
        bench_.settings.before_flush = bench_.settings.after_flush = {};
        const auto flash = bench_.chip.flash();
        shop_.flash.assign(flash.begin(), flash.end());
        shop_.store = bench_.settings.on_disk;
        // At the next start the operator reads the counter.
        const int count = count_in(shop_.store);
        if (count > shop_.good) put_away();
        EXPECT_EQ(count, shop_.good);
    }

  private:
    void arm() {
        if (death_.ms) bench_.at(*death_.ms, [] { throw Killed{}; });
        if (death_.byte) {
            sim::Target target = bench_.chip.target();
            target.hear = [this, hear = target.hear](auto... heard) {
                hear(heard...);
                if (++bytes_ == *death_.byte) throw Killed{};
            };
            bench_.line.connect(target);
        }
        bench_.settings.before_flush = [this] { before_flush(); };
        bench_.settings.after_flush = [this] { after_flush(); };
    }

    void before_flush() {
        ++flushes_;
        const int noted = count_in(bench_.settings.on_disk);
        counts_ = count_in(bench_.settings.values) > noted;
        if (counts_) ++counted_;
        behind_ = !counts_ && behind_next_;
        behind_next_ = counts_;
        die_if(death_.before_flush == flushes_);
        die_if(counts_ && death_.nth_chip == counted_ && death_.behind_chip == Flush::count_before);
        die_if(behind_ && death_.nth_chip == counted_ &&
               death_.behind_chip == Flush::behind_before);
    }

    void after_flush() {
        const int count = count_in(bench_.settings.on_disk);
        EXPECT_GE(count, shop_.highest_count);
        EXPECT_LE(count, shop_.highest_count + 1);
        shop_.highest_count = std::max(shop_.highest_count, count);
        die_if(death_.after_flush == flushes_);
        die_if(counts_ && death_.nth_chip == counted_ && death_.behind_chip == Flush::count_after);
        die_if(behind_ && death_.nth_chip == counted_ && death_.behind_chip == Flush::behind_after);
    }

    static void die_if(bool now) {
        if (now) throw Killed{};
    }

    void click(Control& control) {
        bench_.run_for(40);
        handle_event(bench_.frm, {&control, EventKind::Click, 0, {}});
    }

    void tick(Control& box) {
        box.Value = 1;
        click(box);
    }

    void work() {
        Screen& screen = bench_.frm.screen;
        EXPECT_TRUE(bench_.select_model(job_.model));
        bench_.choose(screen.comDalay_ReDownLoad, "1");
        bench_.files.add("/job/app.bin", random_bytes(700, 3));
        bench_.dialogs.choose_file("/job/app.bin");
        click(screen.comLoadFile);
        if (job_.data_too) {
            bench_.files.add("/job/data.bin", random_bytes(0x210, 4));
            bench_.dialogs.choose_file("/job/data.bin");
            click(screen.comLoadDataFile);
            tick(screen.cheData_Auto_Increase);
        }
        tick(screen.cheAuto_Increase);
        EXPECT_TRUE(bench_.frm.increase.Auto_Increase.Active);
        bench_.power_on_in(200);
        look();
        bench_.run_for(40);
        handle_event(bench_.frm, {&screen.comDownload[1], EventKind::Click, 0, {}});
        EXPECT_TRUE(bench_.boxes().empty() || bench_.boxes().back().kind == BoxKind::open_file);
    }

    // The operator looks at the screen: a chip that is told for good is put away, and
    // the next one comes into the socket.
    void look() {
        const bool told = bench_.log_has("Program OK") || bench_.verdict_is_good();
        const bool counted = leading_integer(bench_.frm.screen.txtWrite_OK_Count.Text) > shop_.good;
        if (!told && !counted) seen_ = false;
        if ((told && !seen_) || counted) {
            seen_ = true;
            const auto flash = bench_.chip.flash();
            shop_.flash.assign(flash.begin(), flash.end());
            put_away();
            if (shop_.good == chips_wanted)
                comStop_Download(bench_.frm);
            else
                bench_.chip.replace(bench_.loop.now());
            bench_.power_on_in(150);
        }
        bench_.at(7, [this] { look(); });
    }

    void put_away() {
        shop_.shelf.push_back(shop_.flash);
        shop_.flash.clear();
        ++shop_.good;
    }

    std::string phase() const {
        const frmMain& frm = bench_.frm;
        if (!frm.images.File_Loaded) return "before the file";
        if (bench_.log_has("will continue")) return "pause";
        if (bench_.log_has("Program OK")) return "behind a good chip";
        if (bench_.log_has("Programming")) return "programming and options";
        if (bench_.log_has("We are erasing")) return "erase";
        if (bench_.log_has("We are trying to program")) return "before the erase";
        if (bench_.log_has("We are trying to connect")) return "connecting";
        return "numbering";
    }

    struct Bench : VirtualBench {
        using VirtualBench::VirtualBench;
        bool verdict_is_good() const { return frm.screen.labVerdict.Caption.starts_with("✔"); }
    };

    Workshop& shop_;
    const Job& job_;
    const Death& death_;
    int bytes_ = 0;
    int flushes_ = 0;
    int counted_ = 0;
    bool counts_ = false;  // this flush carries a new count
    bool behind_ = false;  // this is the one behind it
    bool behind_next_ = false;
    bool seen_ = false;
    Bench bench_;
};

Bytes number_of(const Job& job, const Bytes& image, std::size_t last) {
    const auto end = image.begin() + static_cast<std::ptrdiff_t>(last) + 1;
    return {end - job.length, end};
}

// The bytes of a number, by arithmetic.
Bytes bytes_of(const Job& job, int value) {
    Bytes bytes(static_cast<std::size_t>(job.length));
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
        const int base = job.numeral == 0 ? 256 : job.numeral == 1 ? 100 : 10;
        const int digit = value % base;
        value /= base;
        *byte = static_cast<std::uint8_t>(job.numeral == 0   ? digit
                                          : job.numeral == 1 ? digit / 10 * 16 + digit % 10
                                                             : 0x30 + digit);
    }
    return bytes;
}

// What the operator had typed, long before the first death.
void set_up(Workshop& shop, const Job& job) {
    for (const char* section : {"Auto_Increase", "Data_Auto_Increase"}) {
        shop.store[{section, "address"}] = "1FF";
        shop.store[{section, "Length"}] = std::to_string(job.length);
        shop.store[{section, "next_value"}] = "11";
        shop.store[{section, "Increase"}] = std::to_string(job.increase);
        shop.store[{section, "numeral_system"}] = std::to_string(job.numeral);
    }
}

// A mixture of all ways to die; every fifth life dies at a flush behind a good chip.
Death death_of(int life, std::mt19937& source) {
    const auto below = [&](int limit) {
        return static_cast<int>(source() % static_cast<unsigned>(limit));
    };
    Death death;
    switch (life % 5) {
        case 0:
            death.behind_chip = static_cast<Flush>(life / 5 % 4);
            death.nth_chip = 1 + below(3);
            break;
        case 1:
            death.byte = 1 + below(2500);
            break;
        case 2:
            (below(2) == 0 ? death.before_flush : death.after_flush) = 1 + below(8);
            break;
        default:
            death.ms = below(9000);
    }
    return death;
}

void expect_numbers_without_gap(const Workshop& shop, const Job& job) {
    ASSERT_EQ(shop.shelf.size(), static_cast<std::size_t>(chips_wanted));
    Bytes program = random_bytes(700, 3);
    Bytes data = random_bytes(0x210, 4);
    for (int i = 0; i < chips_wanted; ++i) {
        SCOPED_TRACE("chip " + std::to_string(i + 1));
        const Bytes number = bytes_of(job, 11 + i * job.increase);
        const Bytes& flash = shop.shelf[static_cast<std::size_t>(i)];
        ASSERT_EQ(number_of(job, flash, number_at), number);
        std::copy(number.begin(), number.end(), program.begin() + number_at + 1 - job.length);
        EXPECT_TRUE(std::equal(program.begin(), program.end(), flash.begin()));
        if (!job.data_too) continue;
        constexpr std::size_t data_start = 0x1000;  // of the model
        ASSERT_EQ(number_of(job, flash, data_start + number_at), number);
        std::copy(number.begin(), number.end(), data.begin() + number_at + 1 - job.length);
        EXPECT_TRUE(std::equal(data.begin(), data.end(), flash.begin() + data_start));
    }
}

void run_series(const Job& job, unsigned seed) {
    Workshop shop;
    set_up(shop, job);
    std::mt19937 source(seed);
    for (int life = 0; shop.good < chips_wanted && life < 2000; ++life) {
        SCOPED_TRACE("life " + std::to_string(life));
        Life(shop, job, death_of(life, source)).live();
        if (testing::Test::HasFailure()) return;
    }
    expect_numbers_without_gap(shop, job);
    EXPECT_EQ(count_in(shop.store), chips_wanted);
    EXPECT_GE(shop.kills, 60);
    for (const char* phase : {"before the file", "numbering", "connecting", "erase",
                              "programming and options", "behind a good chip", "pause"})
        EXPECT_GE(shop.killed_in[phase], 2) << phase;
}

TEST(NumberedSeries, HasNoGapAndNoDoubleWhateverMomentTheToolDiesAt) {
    run_series({.model = "VKM47H58RK+", .numeral = 1, .length = 4, .increase = 1}, 1);
}

TEST(NumberedSeries, HoldsForHexadecimalNumbersToo) {
    run_series({.model = "VKM26H2052", .numeral = 0, .length = 2, .increase = 3}, 2);
}

TEST(NumberedSeries, HoldsForAsciiNumbersInProgramAndDataTogether) {
    run_series({.model = "VKM26H5404", .numeral = 2, .length = 6, .increase = 7, .data_too = true},
               3);
}

// ---- each flush of the step behind a good chip, by itself -------------------------

TEST(NumberedSeries, HoldsWhenEveryLifeEndsAtTheSameFlushBehindAGoodChip) {
    for (const Flush flush :
         {Flush::count_before, Flush::count_after, Flush::behind_before, Flush::behind_after})
        for (const int nth_chip : {1, 2}) {
            SCOPED_TRACE(std::to_string(static_cast<int>(flush)) + ", chip " +
                         std::to_string(nth_chip));
            const Job job = {.model = "VKM47H58RK+"};
            Workshop shop;
            set_up(shop, job);
            Death death;
            death.behind_chip = flush;
            death.nth_chip = nth_chip;
            for (int life = 0; life < 12; ++life) Life(shop, job, death).live();
            EXPECT_EQ(shop.kills, 12);
            // Before the count is on the disk the chip is not good, and is tried again.
            EXPECT_EQ(shop.good,
                      flush == Flush::count_before ? 12 * (nth_chip - 1) : 12 * nth_chip);
            for (int i = 0; i < shop.good; ++i)
                EXPECT_EQ(number_of(job, shop.shelf[static_cast<std::size_t>(i)], number_at),
                          bytes_of(job, 11 + i));
        }
}

}  // namespace
}  // namespace vkm::test
