#include <pluginterfaces/fst/aeffect.h>
