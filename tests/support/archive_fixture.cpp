#include "support/archive_fixture.hpp"

namespace respcore::testing {

ArchiveFixture::ArchiveFixture(std::string product_tag, DirectoryForm form)
    : base_(dir_.file("model")), writer_(base_, product_tag, form) {
  // Both main files exist, if only with an empty directory.
  writer_.first();
  writer_.second();
}

Request ArchiveFixture::request(int32_t elem_type, int32_t comp, int32_t nsteps) const {
  Request r;
  r.base = base_;
  r.elem_type = elem_type;
  r.result_comp = comp;
  r.num_steps = nsteps;
  r.num_items = 1;
  r.request_mode = 1;
  r.product_index = 1;
  r.serials = {1};
  r.elements = {1};
  return r;
}

}  // namespace respcore::testing
