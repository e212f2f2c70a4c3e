# The two entry points of a fresh Debian machine: `make run` and `make test`.
# Each installs what is missing, configures and builds first.
PRESET ?= default
BUILD_DIR = build/$(PRESET)
OUT ?= out

.PHONY: deps build run test asan tsan bench clean

deps:
	scripts/install-deps

build: deps
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET)

run: build
	$(BUILD_DIR)/src/cli/velorn export examples/studio.json -o $(OUT)/studio.vls
	$(BUILD_DIR)/renderer/velorn.exe -haltspp 4 -o $(OUT)/studio.png $(OUT)/studio.vls

test: build
	ctest --preset $(PRESET)

asan:
	$(MAKE) test PRESET=asan

# The support layer's tests (threads, tasks, the parallel image code) under
# ThreadSanitizer.
tsan:
	$(MAKE) test PRESET=tsan

bench: build
	$(BUILD_DIR)/bench/mesh_bench

clean:
	rm -rf build $(OUT)
