#include <pluginterfaces/fst/aeffectx.h>
