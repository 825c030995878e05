# Front door: `make run` builds and starts the program, `make test` builds and runs every test.
JOBS ?= $(shell nproc)
CMAKE_GEN = -G Ninja
# A compiler cache, where installed, makes the three test builds and later rebuilds cheap; paths are
# taken relative to the checkout so that any clone of the project shares the cache.
CCACHE := $(shell command -v ccache 2>/dev/null)
ifneq ($(CCACHE),)
  CMAKE_GEN += -DCMAKE_CXX_COMPILER_LAUNCHER=$(CCACHE) -DCMAKE_C_COMPILER_LAUNCHER=$(CCACHE)
  export CCACHE_BASEDIR := $(CURDIR)
  export CCACHE_NOHASHDIR := 1
endif

.PHONY: all deps build run test test-debug test-asan test-tsan fuzz bench install package clean

all: build

deps:
	@tools/setup-debian.sh

build: deps
	cmake -S . -B build/release $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DSONITRA_TESTS=OFF
	cmake --build build/release -j $(JOBS)

run: build
	tools/run-demo.sh

# Every test twice: a debug build, then under AddressSanitizer and UndefinedBehaviorSanitizer;
# the threaded layers (core, work, devices) once more under ThreadSanitizer.
test: deps test-debug test-asan test-tsan

test-debug:
	cmake -S . -B build/debug $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DSONITRA_BENCH=ON
	cmake --build build/debug -j $(JOBS)
	cd build/debug && ctest --output-on-failure -j $(JOBS)

test-asan:
	cmake -S . -B build/asan $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DSONITRA_SANITIZE=ON -DSONITRA_BENCH=OFF
	cmake --build build/asan -j $(JOBS)
	cd build/asan && ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

TSAN_TESTS = test_core test_work test_devices
test-tsan:
	cmake -S . -B build/tsan $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DSONITRA_TSAN=ON -DSONITRA_UI=OFF -DSONITRA_BENCH=OFF
	cmake --build build/tsan -j $(JOBS) --target $(TSAN_TESTS)
	for t in $(TSAN_TESTS); do TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$(CURDIR)/tools/tsan.supp" build/tsan/tests/$$t || exit 1; done

# make fuzz TARGET=wav SECONDS=600
TARGET ?= wav
SECONDS ?= 60
fuzz: deps
	CC=clang CXX=clang++ cmake -S . -B build/fuzz $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSONITRA_FUZZ=ON
	cmake --build build/fuzz -j $(JOBS) --target fuzz_$(TARGET)
	mkdir -p fuzz/corpus-$(TARGET)
	build/fuzz/fuzz/fuzz_$(TARGET) -max_total_time=$(SECONDS) -rss_limit_mb=2048 -timeout=10 fuzz/corpus-$(TARGET) fuzz/seeds/$(TARGET)

bench: build
	cmake -S . -B build/release $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DSONITRA_TESTS=OFF -DSONITRA_BENCH=ON
	cmake --build build/release -j $(JOBS)
	bench/run-all.sh build/release

# Installs under PREFIX (default /usr/local): the programs, desktop entry, icons, file types, manuals.
PREFIX ?= /usr/local
install: deps
	cmake -S . -B build/install $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DSONITRA_TESTS=OFF -DSONITRA_BENCH=OFF \
	  -DCMAKE_INSTALL_PREFIX=$(PREFIX)
	cmake --build build/install -j $(JOBS)
	cmake --install build/install
	-update-mime-database $(PREFIX)/share/mime
	-update-desktop-database $(PREFIX)/share/applications

# A Debian package, build/package/sonitra_*.deb: apt-get install ./build/package/sonitra_*.deb
package: deps
	cmake -S . -B build/package $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DSONITRA_TESTS=OFF -DSONITRA_BENCH=OFF \
	  -DCMAKE_INSTALL_PREFIX=/usr
	cmake --build build/package -j $(JOBS)
	cd build/package && cpack -G DEB

clean:
	rm -rf build
