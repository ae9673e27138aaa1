// SPDX-License-Identifier: GPL-3.0-or-later
// Groonga with a table of documents whose keys are the names, and a positional index of words that
// white space separates. An index that is committed once is built after the documents are in, as
// Groonga advises; otherwise it grows with them.
#include <groonga.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "bench/peers/engine.h"

namespace kestan_bench {
namespace {

class GroongaEngine : public Engine {
 public:
  GroongaEngine() {
    grn_init();
    context_ = grn_ctx_open(0);
    GRN_TEXT_INIT(&text_, GRN_OBJ_DO_SHALLOW_COPY);
  }

  ~GroongaEngine() override {
    grn_obj_unlink(context_, &text_);
    grn_ctx_close(context_);
    grn_fin();
  }

  void Open(const std::string& folder, OpenMode mode) override {
    const std::string path = folder + "/db";
    if (mode == OpenMode::kRead || mode == OpenMode::kUpdate) {
      database_ = Checked(grn_db_open(context_, path.c_str()));
      documents_ = Find("Documents");
      index_ = Find("Words.documents");
      return;
    }
    database_ = Checked(grn_db_create(context_, path.c_str(), nullptr));
    CreateTables();
    index_waits_ = mode == OpenMode::kCreateAtOnce;
    if (!index_waits_) CreateIndex();
  }

  void Add(const std::string& name, const std::string& text) override {
    const grn_id id = grn_table_add(context_, documents_, name.data(),
                                    static_cast<unsigned>(name.size()), nullptr);
    GRN_TEXT_SET_REF(&text_, text.data(), text.size());
    if (id == GRN_ID_NIL ||
        grn_obj_set_value(context_, body_, id, &text_, GRN_OBJ_SET) != GRN_SUCCESS) {
      Fail(name, context_->errbuf);
    }
  }

  // Its files are mapped into memory, so that what was added outlives the process as it is.
  void Commit() override {
    if (index_waits_) CreateIndex();
    index_waits_ = false;
  }

  void Optimise() override {}

  void RunQuery(const Query& query, Listing* listing) override {
    grn_obj* found =
        Checked(grn_table_create(context_, nullptr, 0, nullptr,
                                 GRN_TABLE_HASH_KEY | GRN_OBJ_WITH_SUBREC, documents_, nullptr));
    if (NearDistance(query.kind) > 0) {
      SearchNear(query, found);
    } else {
      Search(query.first, GRN_OP_OR, found);
      if (query.kind == QueryKind::kAnd) Search(query.second, GRN_OP_AND, found);
      if (query.kind == QueryKind::kOr) Search(query.second, GRN_OP_OR, found);
      if (query.kind == QueryKind::kAndNot) Search(query.second, GRN_OP_AND_NOT, found);
    }
    List(found, listing);
    grn_obj_unlink(context_, found);
  }

  void Close() override {
    grn_obj_close(context_, database_);
    database_ = nullptr;
  }

  std::string Version() const override { return std::string("Groonga ") + grn_get_version(); }

 private:
  grn_obj* Checked(grn_obj* object) {
    if (object == nullptr) Fail("groonga", context_->errbuf);
    return object;
  }

  grn_obj* Find(std::string_view name) {
    return Checked(grn_ctx_get(context_, name.data(), static_cast<int>(name.size())));
  }

  grn_obj* CreateColumn(grn_obj* table, std::string_view name, grn_column_flags flags,
                        grn_obj* type) {
    return Checked(grn_column_create(context_, table, name.data(),
                                     static_cast<unsigned>(name.size()), nullptr,
                                     flags | GRN_OBJ_PERSISTENT, type));
  }

  void CreateTables() {
    documents_ = Checked(grn_table_create(context_, "Documents", std::strlen("Documents"), nullptr,
                                          GRN_TABLE_HASH_KEY | GRN_OBJ_PERSISTENT,
                                          Find("ShortText"), nullptr));
    body_ = CreateColumn(documents_, "body", GRN_OBJ_COLUMN_SCALAR, Find("Text"));
    words_ = Checked(grn_table_create(context_, "Words", std::strlen("Words"), nullptr,
                                      GRN_TABLE_PAT_KEY | GRN_OBJ_PERSISTENT, Find("ShortText"),
                                      nullptr));
    grn_obj_set_info(context_, words_, GRN_INFO_DEFAULT_TOKENIZER, Find("TokenDelimit"));
    grn_obj_set_info(context_, words_, GRN_INFO_NORMALIZER, Find("NormalizerAuto"));
  }

  void CreateIndex() {
    index_ =
        CreateColumn(words_, "documents", GRN_OBJ_COLUMN_INDEX | GRN_OBJ_WITH_POSITION, documents_);
    grn_obj source;
    GRN_UINT32_INIT(&source, GRN_OBJ_VECTOR);
    GRN_UINT32_PUT(context_, &source, grn_obj_id(context_, body_));
    if (grn_obj_set_info(context_, index_, GRN_INFO_SOURCE, &source) != GRN_SUCCESS) {
      Fail("groonga", context_->errbuf);
    }
    grn_obj_unlink(context_, &source);
  }

  void Search(std::string_view words, grn_operator combination, grn_obj* found,
              grn_search_optarg* options = nullptr) {
    GRN_TEXT_SET_REF(&text_, words.data(), words.size());
    grn_search_optarg exact{};
    exact.mode = GRN_OP_EXACT;
    if (grn_obj_search(context_, index_, &text_, found, combination,
                       options == nullptr ? &exact : options) != GRN_SUCCESS) {
      Fail(std::string(words), context_->errbuf);
    }
  }

  void SearchNear(const Query& query, grn_obj* found) {
    grn_search_optarg options{};
    options.mode = GRN_OP_NEAR_PHRASE;  // GRN_OP_NEAR counts from one word more on one side
    options.max_interval = NearDistance(query.kind);
    Search(query.first + ' ' + query.second, GRN_OP_OR, found, &options);
  }

  void List(grn_obj* found, Listing* listing) {
    grn_table_cursor* cursor =
        grn_table_cursor_open(context_, found, nullptr, 0, nullptr, 0, 0, -1, GRN_CURSOR_BY_ID);
    char name[GRN_TABLE_MAX_KEY_SIZE];
    while (grn_table_cursor_next(context_, cursor) != GRN_ID_NIL) {
      void* key = nullptr;
      void* value = nullptr;
      grn_table_cursor_get_key(context_, cursor, &key);
      grn_table_cursor_get_value(context_, cursor, &value);
      const int bytes =
          grn_table_get_key(context_, documents_, *static_cast<grn_id*>(key), name, sizeof(name));
      listing->Add({name, static_cast<std::size_t>(bytes)}, *static_cast<double*>(value));
    }
    grn_table_cursor_close(context_, cursor);
  }

  grn_ctx* context_ = nullptr;
  grn_obj* database_ = nullptr;
  grn_obj* documents_ = nullptr;
  grn_obj* body_ = nullptr;
  grn_obj* words_ = nullptr;
  grn_obj* index_ = nullptr;
  bool index_waits_ = false;
  grn_obj text_;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<GroongaEngine>(); }

}  // namespace kestan_bench
