// MetersAdjusted and the array of the host that it fills.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

namespace pelmora::test {
namespace {

class adjusted_numbers : public ComponentTest {
 protected:
  Text meter{mainJobMeter};
  VARIANT_BOOL isEmpty = VARIANT_TRUE;
};

// Three numbers that a host put there.
SAFEARRAY* hostsNumbers() {
  SAFEARRAYBOUND bound{3, 5};
  SAFEARRAY* numbers = SafeArrayCreate(VT_I2, 1, &bound);
  for (LONG i = 5; i < 8; ++i) {
    short number = static_cast<short>(10 * i);
    SafeArrayPutElement(numbers, &i, &number);
  }
  return numbers;
}
void expectHostsNumbers(SAFEARRAY* numbers) {
  ASSERT_NE(numbers, nullptr);
  for (LONG i = 5; i < 8; ++i) {
    short number = 0;
    EXPECT_EQ(SafeArrayGetElement(numbers, &i, &number), S_OK);
    EXPECT_EQ(number, 10 * i);
  }
}

TEST_F(adjusted_numbers, leave_both_arrays_where_the_meter_is_unknown) {
  useNewDatabase();
  SAFEARRAY* const ours = hostsNumbers();
  SAFEARRAY* const list = hostsNumbers();
  SAFEARRAY* numbers = ours;
  SAFEARRAY* result = list;
  isEmpty = VARIANT_FALSE;
  EXPECT_EQ(data->MetersAdjusted(meter, &isEmpty, &numbers, &result), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_TRUE);
  EXPECT_EQ(numbers, ours);
  EXPECT_EQ(result, list);
  expectHostsNumbers(numbers);
  SafeArrayDestroy(ours);
  SafeArrayDestroy(list);
}

TEST_F(adjusted_numbers, leave_both_arrays_after_an_error) {
  SAFEARRAY* const ours = hostsNumbers();
  SAFEARRAY* numbers = ours;
  SAFEARRAY* result = ours;
  isEmpty = VARIANT_FALSE;
  BoxAnswerer boxes;
  EXPECT_EQ(data->MetersAdjusted(meter, &isEmpty, &numbers, &result), S_OK);
  EXPECT_EQ(boxes.boxes().size(), 1U);
  EXPECT_EQ(isEmpty, VARIANT_TRUE);
  EXPECT_EQ(numbers, ours);
  EXPECT_EQ(result, ours);
  expectHostsNumbers(numbers);
  SafeArrayDestroy(ours);
}

TEST_F(adjusted_numbers, replace_an_array_that_the_host_can_size) {
  storeSeries();
  SAFEARRAY* numbers = hostsNumbers();
  SAFEARRAY* list = nullptr;
  EXPECT_EQ(data->MetersAdjusted(meter, &isEmpty, &numbers, &list), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  LONG last = -1;
  SafeArrayGetUBound(numbers, 1, &last);
  EXPECT_EQ(last, 0);
  SafeArrayDestroy(numbers);
  SafeArrayDestroy(list);
}

TEST_F(adjusted_numbers, leave_an_array_that_the_host_keeps_where_it_is) {
  storeSeries();
  const auto isLeftAlone = [&](SAFEARRAY* ours) {
    SAFEARRAY* numbers = ours;
    SAFEARRAY* result = nullptr;
    isEmpty = VARIANT_FALSE;
    BoxAnswerer boxes;
    EXPECT_EQ(data->MetersAdjusted(meter, &isEmpty, &numbers, &result), S_OK);
    EXPECT_EQ(boxes.lastText(),
              "Error in RawData:meters\r\nThis array is fixed or temporarily locked");
    EXPECT_EQ(isEmpty, VARIANT_TRUE);
    EXPECT_EQ(numbers, ours);
    EXPECT_EQ(result, nullptr);
    expectHostsNumbers(ours);
  };
  for (const int kept : {FADF_FIXEDSIZE, FADF_STATIC, FADF_AUTO, FADF_EMBEDDED}) {
    SAFEARRAY* numbers = hostsNumbers();
    const USHORT features = numbers->fFeatures;
    numbers->fFeatures = static_cast<USHORT>(features | kept);
    isLeftAlone(numbers);
    numbers->fFeatures = features;
    SafeArrayDestroy(numbers);
  }
  SAFEARRAY* locked = hostsNumbers();
  SafeArrayLock(locked);
  isLeftAlone(locked);
  EXPECT_EQ(locked->cLocks, 1U);
  SafeArrayUnlock(locked);
  SafeArrayDestroy(locked);
}

TEST_F(adjusted_numbers, leave_an_array_that_a_script_keeps_locked) {
  storeSeries();
  BoxAnswerer boxes;
  for (const VARTYPE kind : {VARTYPE{VT_VARIANT}, VARTYPE{VT_I2}}) {
    SAFEARRAYBOUND bound{2, 0};
    SAFEARRAY* const ours = SafeArrayCreate(kind, 1, &bound);
    SafeArrayLock(ours);
    VARIANT held = variantOf(ours, kind);
    SAFEARRAY* typed = ours;
    const auto any = static_cast<VARTYPE>(VT_ARRAY | kind);
    for (const VARIANT& reference : {referenceTo(VT_VARIANT, &held), referenceTo(any, &typed)}) {
      isEmpty = VARIANT_FALSE;
      Outcome outcome = late().call(
          L"MetersAdjusted", {variantOf(mainJobMeter), referenceTo(VT_BOOL, &isEmpty), reference});
      EXPECT_EQ(outcome.code, S_OK);
      EXPECT_EQ(isEmpty, VARIANT_TRUE);
      EXPECT_EQ(held.parray, ours);
      EXPECT_EQ(typed, ours);
      EXPECT_EQ(ours->cLocks, 1U);
      VariantClear(&outcome.result);
    }
    SafeArrayUnlock(ours);
    SafeArrayDestroy(ours);
  }
  EXPECT_EQ(boxes.boxes().size(), 4U);
}

}  // namespace
}  // namespace pelmora::test
