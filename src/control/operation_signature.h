// What an editor operation takes and returns, as a plain function type: the generated
// forwarding compares each operation the control calls with what the interface
// description says the editor receives. Whether the operation is const is the editor's
// own affair.
#pragma once

template <typename MemberFunction>
struct OperationSignatureOf;

template <typename Class, typename Result, typename... Params>
struct OperationSignatureOf<Result (Class::*)(Params...)> {
  using type = Result(Params...);
};
template <typename Class, typename Result, typename... Params>
struct OperationSignatureOf<Result (Class::*)(Params...) const> {
  using type = Result(Params...);
};

template <typename MemberFunction>
using OperationSignature = typename OperationSignatureOf<MemberFunction>::type;
