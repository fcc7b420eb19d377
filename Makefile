# The two everyday commands: `make run` converts the sample notebook,
# `make test` builds everything and runs the whole suite.
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=
# Paths relative to the checkout let several checkouts share cached objects.
export CCACHE_BASEDIR := $(CURDIR)

.PHONY: run test build tools clean install deb fuzz fuzz-run

tools:
	@scripts/ensure-tools.sh native

$(BUILD)/CMakeCache.txt: | tools
	cmake -S . -B $(BUILD) $(CMAKE_FLAGS)

build: tools $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -x $(BUILD)/nbtext ]; then \
	  $(BUILD)/nbtext samples/sample.nb; \
	else \
	  echo "nbtext is not built yet; the foundation library and its tests are ready:"; \
	  ls $(BUILD)/libzn.a $(BUILD)/tests/nbtext_tests; \
	fi

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# `make install PREFIX=/opt/nbtext` (DESTDIR is honoured for staging).
PREFIX ?= /usr/local
install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD) --prefix "$(PREFIX)"

# The Debian package, built in a tree of its own without the tests. The
# assertion reports name source files through __FILE__, so the package's
# build maps this checkout's path away: the package holds no build paths.
DEB_BUILD ?= build-deb
deb: tools
	@scripts/ensure-tools.sh package
	cmake -S . -B $(DEB_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNBTEXT_TESTS=OFF \
	  "-DCMAKE_CXX_FLAGS=-ffile-prefix-map=$(CURDIR)/="
	cmake --build $(DEB_BUILD) -j $(JOBS)
	cd $(DEB_BUILD) && cpack -G DEB
	@ls $(DEB_BUILD)/nbtext_*.deb

# The libFuzzer targets of fuzz/, built with clang and the sanitizers in a
# tree of their own; `make fuzz-run FUZZ_SECONDS=1800` runs each in turn.
FUZZ_SECONDS ?= 600
fuzz:
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DNBTEXT_FUZZ=ON -DNBTEXT_TESTS=OFF
	cmake --build build-fuzz -j $(JOBS)

fuzz-run: fuzz
	scripts/run-fuzzers.sh $(FUZZ_SECONDS)

clean:
	rm -rf $(BUILD) build-asan build-armhf build-fuzz $(DEB_BUILD)
