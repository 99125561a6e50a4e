# The two everyday commands: `make run` and `make test`. Both install what is missing first.
PRESET ?= default
BUILD_DIR := build

.PHONY: run test build deps clean package

run: build
	@bash scripts/run.sh $(BUILD_DIR)

test: build
	ctest --preset $(PRESET)

build: deps
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET)

# A Debian package of the program, its data, manual, menu entry, icon and song types.
package: build
	cd $(BUILD_DIR) && cpack -G DEB

deps:
	@bash scripts/install-deps.sh

clean:
	rm -rf build build-debug build-asan build-tsan build-fuzz
