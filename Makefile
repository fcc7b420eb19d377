# The two everyday commands: `make run` converts the sample notebook,
# `make test` builds everything and runs the whole suite.
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=
# Paths relative to the checkout let several checkouts share cached objects.
export CCACHE_BASEDIR := $(CURDIR)

.PHONY: run test build tools clean install

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

clean:
	rm -rf $(BUILD) build-asan build-armhf
