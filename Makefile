# The two everyday commands: `make run` builds the converter alone and
# converts the sample notebook; `make test` builds everything else (the
# test suite, GoogleTest, the benchmarks) and runs the whole suite.
BUILD ?= build
JOBS ?= $(shell nproc)
# ON in CI and in developers' trees: compiler warnings fail the build.
NBTEXT_WERROR ?= OFF
CMAKE_FLAGS ?=
# Paths relative to the checkout let several checkouts share cached objects.
export CCACHE_BASEDIR := $(CURDIR)
# cmake --build runs make again below this one; each level would print its
# Entering/Leaving lines.
MAKEFLAGS += --no-print-directory

.PHONY: run test build tools clean install deb fuzz fuzz-run

tools:
	@scripts/ensure-tools.sh native

# The build tree is configured again whenever this command changes (another
# NBTEXT_WERROR or CMAKE_FLAGS); its chatter goes to a log, shown on failure.
CONFIGURE = cmake -S . -B $(BUILD) -DNBTEXT_WERROR=$(NBTEXT_WERROR) $(CMAKE_FLAGS)
$(BUILD)/configure.cmd: FORCE
	@mkdir -p $(BUILD)
	@echo '$(CONFIGURE)' | cmp -s - $@ || echo '$(CONFIGURE)' >$@
$(BUILD)/CMakeCache.txt: $(BUILD)/configure.cmd | tools
	@echo "Configuring $(BUILD)/ (log: $(BUILD)/configure.log)"
	@$(CONFIGURE) >$(BUILD)/configure.log 2>&1 || { cat $(BUILD)/configure.log; exit 1; }
FORCE:

run: $(BUILD)/CMakeCache.txt
	@cmake --build $(BUILD) --target nbtext -j $(JOBS)
	$(BUILD)/nbtext samples/sample.nb

build: $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# `make install PREFIX=/opt/nbtext` (DESTDIR is honoured for staging).
PREFIX ?= /usr/local
install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD) --prefix "$(PREFIX)"

# The Debian package, built in a tree of its own without the tests, with
# Debian's hardening flags. The assertion reports name source files through
# __FILE__, so the package's build maps this checkout's path away: the
# package holds no build paths. NBTEXT_MAINTAINER="Name <address>" names
# another maintainer than the project's list.
DEB_BUILD ?= build-deb
DEB_FLAGS = DEB_BUILD_MAINT_OPTIONS=hardening=+all dpkg-buildflags --get
deb: tools
	@scripts/ensure-tools.sh package
	cmake -S . -B $(DEB_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNBTEXT_TESTS=OFF \
	  $(if $(NBTEXT_MAINTAINER),"-DNBTEXT_MAINTAINER=$(NBTEXT_MAINTAINER)") \
	  "-DCMAKE_CXX_FLAGS=$$($(DEB_FLAGS) CPPFLAGS) $$($(DEB_FLAGS) CXXFLAGS) -ffile-prefix-map=$(CURDIR)/=" \
	  "-DCMAKE_EXE_LINKER_FLAGS=$$($(DEB_FLAGS) LDFLAGS)"
	cmake --build $(DEB_BUILD) -j $(JOBS)
	cd $(DEB_BUILD) && cpack -G DEB
	@ls $(DEB_BUILD)/nbtext_*.deb

# The libFuzzer targets of fuzz/, built with clang and the sanitizers in a
# tree of their own; `make fuzz-run FUZZ_SECONDS=1800` runs each in turn.
FUZZ_SECONDS ?= 600
fuzz:
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DNBTEXT_FUZZ=ON -DNBTEXT_TESTS=OFF -DNBTEXT_WERROR=ON
	cmake --build build-fuzz -j $(JOBS)

fuzz-run: fuzz
	scripts/run-fuzzers.sh $(FUZZ_SECONDS)

clean:
	rm -rf $(BUILD) build-asan build-armhf build-fuzz $(DEB_BUILD)
