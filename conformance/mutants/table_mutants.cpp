// Mutants with faults in tables, clients, exceptions, records or queries, grouped by the check for the fault.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include "mutant.h"

namespace orlu::mutants {
namespace {

Table* gFirst = nullptr;

// loading
void emptySecondTable(Table& table) {
  if (gEntries > 1) table = Table();
}
void fillReserved(Table& table) {
  table.reserved = [](void*) { return 0; };
}
void shareFirstTable(Table& table) {
  if (gEntries == 2) gFirst = &table;
  if (gEntries < 3) return;
  table.metadataOps.createMetadata = [](int kind) { return gFirst->metadataOps.createMetadata(kind); };
}

// mandatory
void lackFlush(Table& table) {
  table.flush = nullptr;
}
void lackSetRaw(Table& table) {
  table.metadataOps.setRaw = nullptr;
}

// clients
void giveOneHandle(Table& table) {
  table.createClient = [client = table.createClient(AlgoCreateClientRecord{kAlgoTableVersion, {}})](
                           const auto&) { return client; };
  table.destroyClient = [](void*) { return 0; };
}
template <typename Value>
void forgetAtEnd(Table& table, std::map<void*, Value>& known) {
  table.destroyClient = [&known, destroy = table.destroyClient](void* client) {
    known.erase(client);
    return destroy(client);
  };
}
void needInit(Table& table) {
  static std::map<void*, bool> initialised;
  forgetAtEnd(table, initialised);
  table.init = [](const AlgoInitRecord& record) {
    initialised[record.client] = true;
    return 0;
  };
  table.uninit = [](const AlgoUninitRecord& record) {
    if (!initialised[record.client]) std::abort();
    return 0;
  };
}
void uninitOnce(Table& table) {
  static std::map<void*, int> ended;
  forgetAtEnd(table, ended);
  table.uninit = [](const AlgoUninitRecord& record) {
    if (record.mode == 0 && ++ended[record.client] > 4) std::abort();
    return 0;
  };
}

// exceptions
void throwAtCommand(Table& table) {
  table.command = [](const AlgoCommandRecord& record) {
    if (!record.data.empty() && record.data[0] == '?') throw std::runtime_error("planted");
    return 0;
  };
}
void callWhileHandling(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    try {
      throw std::runtime_error("planted");
    } catch (const std::exception&) {
      send(bytes);
    }
  });
}

// layout
void readPastRecord(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    volatile int sum = 0;
    sum = sum + *(reinterpret_cast<const volatile int*>(&record + 1));
  });
}
void swapIds(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    AlgoProcessRecord swapped = record;
    swapped.nativeReq = record.reqId == 77 ? record.nativeReq : record.reqId;
    return process(swapped);
  };
}
void writePastTable(Table& table) {
  std::memset(static_cast<void*>(&table + 1), 0, 32);
}
void shiftTable(Table& table) {
  auto* const bytes = reinterpret_cast<unsigned char*>(&table);
  std::memmove(bytes + sizeof(void*), bytes, sizeof table - sizeof(void*));
}

// queries
void closeFile(Table& table) {
  table.translateParamFile = [](const AlgoTranslateParamFileRecord& record) { return close(record.fd); };
}
void answerAtLength(Table& table) {
  table.getData = [table](const AlgoGetDataRecord& record) {
    leaveResult(table, record.block, kFeedback, kQueryResult, Bytes(kQueryResultSize + 1, 'x'));
    return 0;
  };
}

}  // namespace

std::vector<Mutant> tableMutants() {
  return {
      {"empty_second_table",  emptySecondTable },
      {"fill_reserved",       fillReserved     },
      {"share_first_table",   shareFirstTable  },
      {"lack_flush",          lackFlush        },
      {"lack_set_raw",        lackSetRaw       },
      {"give_one_handle",     giveOneHandle    },
      {"need_init",           needInit         },
      {"uninit_once",         uninitOnce       },
      {"throw_at_command",    throwAtCommand   },
      {"call_while_handling", callWhileHandling},
      {"read_past_record",    readPastRecord   },
      {"swap_ids",            swapIds          },
      {"write_past_table",    writePastTable   },
      {"shift_table",         shiftTable       },
      {"close_file",          closeFile        },
      {"answer_at_length",    answerAtLength   },
  };
}

}  // namespace orlu::mutants
