#include <lyr/kit.h>

LYR_COMPONENT(Chair, lyr::TiesOnly) {
};
